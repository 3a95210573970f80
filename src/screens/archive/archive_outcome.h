// What came of the last archive run: what the sheet shows of it, and the whole lists behind that for the
// clipboard. Main thread.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include "records/archived/archive_records.h"
#include "screens/archive/archive_result.h"
#include "screens/desktop/desktop_actions.h"
#include "text/shared_text.h"

namespace corvane {

class ArchiveOutcome : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("part of the archive sheet")
    Q_PROPERTY(corvane::ArchiveResultView view READ view NOTIFY changed)

  public:
    // `desktop` must outlive it.
    explicit ArchiveOutcome(DesktopActions& desktop, QObject* parent = nullptr);

    [[nodiscard]] const ArchiveResultView& view() const { return view_; }

    // `chosen` messages were to be archived.
    void set(EmailArchiveRunResult result, std::int64_t chosen);

    // Of the messages that failed; empty without any.
    [[nodiscard]] SharedTextSet failedIDs() const;

    Q_INVOKABLE void copyFailures();
    Q_INVOKABLE void copyVariants();

  Q_SIGNALS:
    void changed();

  private:
    DesktopActions& desktop_;
    std::vector<EmailArchiveFailure> failures_;
    std::vector<std::string> variantWarnings_;
    ArchiveResultView view_;
};

} // namespace corvane
