// The exit statuses of corvane-cli. Where a command can come to its end in several ways, it is decided here
// which of them it is; a command that does all it was asked for returns `done` itself.
#pragma once

#include <exception>

#include "platform/processes/quit_signals.h"

namespace corvane {
struct ArchiveRebuild;
struct ArchiveRemovalEnd;
struct ArchiveVerification;
struct AttachmentSaving;
struct EmailArchiveRunResult;
struct ExportResult;
struct MailScanState;
} // namespace corvane

namespace corvane::cli {

enum ExitStatus : int {
    done = 0,
    failed = 1,
    wrongUsage = 2,
    doneWithIssues = 3, // done, but not for all: failures or warnings
    interrupted = platform::interruptedStatus,
};

// A command that was left by an exception.
ExitStatus statusOf(const std::exception& error);

// A command that only tells: it has told all of it, unless it was asked to end before.
ExitStatus statusOfAnswer();

ExitStatus statusOf(const MailScanState& scan);
ExitStatus statusOf(const EmailArchiveRunResult& run);
ExitStatus statusOf(const ArchiveVerification& verification);
ExitStatus statusOf(const ArchiveRebuild& rebuild);
ExitStatus statusOf(const ArchiveRemovalEnd& removal);
ExitStatus statusOf(const ExportResult& result);
ExitStatus statusOf(const AttachmentSaving& saving);
ExitStatus statusOfProof(bool isAllProven);

} // namespace corvane::cli
