// The messages that the last run of this session couldn't archive, with the reasons it gave. Main thread.
#pragma once

#include <memory>
#include <string_view>
#include <unordered_map>

#include <QObject>

#include "records/archived/archive_records.h"
#include "records/mail_message_record.h"
#include "text/shared_text.h"

namespace corvane {

// The reason by the path of a message's file. Immutable.
using FailureReasons = std::unordered_map<SharedText, SharedText, TextHash, TextEqual>;

class LastFailures : public QObject {
    Q_OBJECT

  public:
    using QObject::QObject;

    // Never null; empty before the first run.
    [[nodiscard]] const std::shared_ptr<const FailureReasons>& reasons() const { return reasons_; }

    // The paths of these files; never null.
    [[nodiscard]] const std::shared_ptr<const SharedTextSet>& paths() const { return paths_; }

    // Replaces what the run before had.
    void setFrom(const EmailArchiveRunResult& result);

  Q_SIGNALS:
    void changed();

  private:
    std::shared_ptr<const FailureReasons> reasons_ = std::make_shared<const FailureReasons>();
    std::shared_ptr<const SharedTextSet> paths_ = std::make_shared<const SharedTextSet>();
};

// The reason for one of the message's files; null for a message that didn't fail.
const SharedText* failureReason(const FailureReasons& reasons, const MailMessageRecord& message);

} // namespace corvane
