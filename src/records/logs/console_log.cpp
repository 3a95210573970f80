#include "records/logs/console_log.h"

#include <string>

#include <syslog.h>
#include <unistd.h>

namespace corvane {

void consoleLine(std::string_view line) {
    std::string whole(line);
    whole += '\n';
    std::string_view rest = whole;
    while (!rest.empty()) {
        const ssize_t written = ::write(STDERR_FILENO, rest.data(), rest.size());
        if (written <= 0) return;
        rest.remove_prefix(static_cast<std::size_t>(written));
    }
}

void systemLogLine(std::string_view line) {
    ::syslog(LOG_USER | LOG_NOTICE, "%.*s", static_cast<int>(line.size()), line.data());
}

} // namespace corvane
