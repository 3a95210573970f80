#include "records/logs/startup_log.h"

#include <chrono>

#include <fmt/format.h>

#include "records/logs/append_line.h"
#include "records/logs/console_log.h"

namespace corvane {

namespace {

constexpr std::string_view fileName = "archive-library-startup.log";

} // namespace

void ArchiveLibraryStartupLog::mark(std::string_view message) const {
    performanceLog_.mark(fmt::format("[ArchiveStartup] {}", message));
    const std::chrono::duration<double> now = std::chrono::system_clock::now().time_since_epoch();
    const std::string line = fmt::format("{:.6f} {}", now.count(), message);
    const bool isWritten =
        !support_.createBaseDirectory() && appendLine(support_.filePath(fileName), line, MissingFile::fail);
    if (!isWritten) systemLogLine(fmt::format("[ArchiveLibraryStartup] {}", message));
}

void ArchiveLibraryStartupLog::reset() const {
    if (const auto error = emptyLogFile(support_, fileName))
        systemLogLine(fmt::format("[ArchiveLibraryStartup] reset failed: {}", error.message()));
}

} // namespace corvane
