#include "screens/archive/archive_outcome.h"

#include <cstdint>
#include <utility>

namespace corvane {

ArchiveOutcome::ArchiveOutcome(DesktopActions& desktop, QObject* parent)
  : QObject(parent)
  , desktop_(desktop) {}

void ArchiveOutcome::set(EmailArchiveRunResult result, std::int64_t chosen) {
    view_ = ArchiveResultView::of(result, chosen);
    failures_ = std::move(result.failures);
    variantWarnings_ = std::move(result.variantWarnings);
    Q_EMIT changed();
}

SharedTextSet ArchiveOutcome::failedIDs() const {
    SharedTextSet ids;
    for (const EmailArchiveFailure& failure : failures_) ids.insert(failure.messageFileURL.path());
    return ids;
}

void ArchiveOutcome::copyFailures() {
    desktop_.copy(screens::failureList(failures_));
}

void ArchiveOutcome::copyVariants() {
    desktop_.copy(screens::variantList(variantWarnings_));
}

} // namespace corvane
