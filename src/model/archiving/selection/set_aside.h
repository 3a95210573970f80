// The messages that the user doesn't want to be archived for now, by their stable ids, so that they stay
// aside over all scans. Kept in the settings. Main thread.
//
// A message that is set aside is no candidate; it doesn't count as archived either, and keeps what it stands
// in from being called safe.
#pragma once

#include <memory>
#include <string>

#include <QObject>

#include "model/model_context.h"
#include "records/mail_message_record.h"
#include "text/shared_text.h"

namespace corvane {

class SetAside : public QObject {
    Q_OBJECT

  public:
    // Reads the settings.
    explicit SetAside(ModelContext& context, QObject* parent = nullptr);

    // Never null; another set after each change.
    [[nodiscard]] const std::shared_ptr<const SharedTextSet>& stableIDs() const { return stableIDs_; }

    // Sets messages aside, or takes them back. `changed` follows where that makes a difference.
    void set(const MessageList& messages, bool isSetAside);

  Q_SIGNALS:
    void changed();

  private:
    ModelContext& context_;
    std::shared_ptr<const SharedTextSet> stableIDs_;
};

} // namespace corvane
