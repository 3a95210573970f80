#include "records/logs/console_log.h"

#include <atomic>
#include <cerrno>
#include <string>

#include <syslog.h>
#include <unistd.h>

#include "text/hidden_characters.h"

namespace corvane {

namespace {

std::atomic<bool> consoleLinesAreShown = false;

} // namespace

void messageLine(std::string_view line) {
    const std::string whole = text::withVisibleSigns(line) + '\n';
    std::string_view rest = whole;
    while (!rest.empty()) {
        const ssize_t written = ::write(STDERR_FILENO, rest.data(), rest.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return;
        rest.remove_prefix(static_cast<std::size_t>(written));
    }
}

void consoleLine(std::string_view line) {
    if (consoleLinesAreShown) messageLine(line);
}

void showConsoleLines() noexcept {
    consoleLinesAreShown = true;
}

void systemLogLine(std::string_view line) {
    ::syslog(LOG_USER | LOG_NOTICE, "%s", text::withVisibleSigns(line).c_str());
}

} // namespace corvane
