#include "mailstore/reader_logs.h"

#include <chrono>

#include <fmt/format.h>

#include "records/logs/append_line.h"
#include "records/logs/console_log.h"
#include "records/timestamps.h"

namespace corvane::mailstore {

namespace {

void writeLine(const CorvaneAppSupport& support, std::string_view fileName, std::string_view text,
               LogStart start) {
    const auto error =
        start == LogStart::reset ? support.writeFile(fileName, "") : support.createBaseDirectory();
    if (error) return; // the console has the line
    const auto time = formatTimestampWithMilliseconds(std::chrono::system_clock::now());
    appendLine(support.filePath(fileName), fmt::format("[{}] {}", time, text), MissingFile::create);
}

} // namespace

void debugLog(const CorvaneAppSupport& support, std::string_view text) {
    consoleLine(fmt::format("[TrashPlanDebug] {}", text));
    writeLine(support, "trash-plan-debug.log", text, LogStart::append);
}

void accountsLog(std::string_view text) {
    consoleLine(fmt::format("[Accounts] {}", text));
}

void restoredMailDiagnosticLog(const CorvaneAppSupport& support, std::string_view text, LogStart start) {
    consoleLine(fmt::format("[RestoreScanDiagnostic] {}", text));
    writeLine(support, restoredMailDiagnosticLogName, text, start);
}

} // namespace corvane::mailstore
