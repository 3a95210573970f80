#include "cli/exit_status.h"

#include "archive/attachments/attachment_saving.h"
#include "archive/checks/archive_rebuild.h"
#include "archive/checks/archive_verification.h"
#include "archive/export/mail_export.h"
#include "cli/session.h"
#include "model/library/archive_removal_flow.h"
#include "records/archived/archive_records.h"
#include "records/model_enums.h"

namespace corvane::cli {

namespace {

ExitStatus statusAfter(bool isInterrupted, bool hasIssues) {
    if (isInterrupted) return interrupted;
    return hasIssues ? doneWithIssues : done;
}

} // namespace

ExitStatus statusOf(const std::exception& error) {
    if (dynamic_cast<const Interrupted*>(&error) != nullptr) return interrupted;
    return dynamic_cast<const WrongUsage*>(&error) != nullptr ? wrongUsage : failed;
}

ExitStatus statusOfAnswer() {
    return statusAfter(wasInterrupted(), false);
}

ExitStatus statusOf(const MailScanState& scan) {
    return scan.kind == MailScanState::Kind::failed ? failed : done;
}

// What is told of the archive itself is no issue of the run.
ExitStatus statusOf(const EmailArchiveRunResult& run) {
    return statusAfter(wasInterrupted(), run.failedCount > 0 || !run.variantWarnings.empty());
}

// One that was stopped is no result, and ends by Interrupted.
ExitStatus statusOf(const ArchiveVerification& verification) {
    return statusAfter(false, !verification.isClean());
}

ExitStatus statusOf(const ArchiveRebuild& rebuild) {
    return statusAfter(false, !rebuild.failures.empty());
}

ExitStatus statusOf(const ArchiveRemovalEnd& removal) {
    return statusAfter(wasInterrupted(), !removal.failures.empty());
}

ExitStatus statusOf(const ExportResult& result) {
    return statusAfter(result.wasCancelled, !result.failures.empty());
}

ExitStatus statusOf(const AttachmentSaving& saving) {
    return statusAfter(saving.wasCancelled, !saving.failures.empty());
}

ExitStatus statusOfProof(bool isAllProven) {
    return statusAfter(wasInterrupted(), !isAllProven);
}

} // namespace corvane::cli
