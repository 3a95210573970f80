#include "records/startup_log.h"

#include <chrono>
#include <system_error>

#include <fmt/format.h>

#include "records/append_line.h"
#include "records/console_log.h"

namespace corvane {

namespace {

constexpr std::string_view fileName = "archive-library-startup.log";

} // namespace

void ArchiveLibraryStartupLog::mark(std::string_view message) const {
    performanceLog_.mark(fmt::format("[ArchiveStartup] {}", message));
    const std::chrono::duration<double> now = std::chrono::system_clock::now().time_since_epoch();
    const std::string line = fmt::format("{:.6f} {}", now.count(), message);
    try {
        support_.baseDirectory(true);
        if (appendLine(support_.filePath(fileName), line, MissingFile::fail)) return;
    } catch (const std::system_error&) { // told below
    }
    systemLogLine(fmt::format("[ArchiveLibraryStartup] {}", message));
}

void ArchiveLibraryStartupLog::reset() const {
    try {
        support_.writeFile(fileName, "");
    } catch (const std::system_error& error) {
        systemLogLine(fmt::format("[ArchiveLibraryStartup] {}", error.what()));
    }
}

} // namespace corvane
