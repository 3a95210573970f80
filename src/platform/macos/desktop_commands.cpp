#include "platform/macos/desktop_commands.h"

#include <algorithm>
#include <cstdint>

namespace corvane::platform::macos {

namespace {

constexpr const char* openProgram = "/usr/bin/open";

bool isLetter(char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
}

// RFC 3986, 3.1.
bool hasScheme(std::string_view text) {
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos || colon == 0 || !isLetter(text.front())) return false;
    return std::ranges::all_of(text.substr(0, colon), [](char byte) {
        return isLetter(byte) || (byte >= '0' && byte <= '9') || byte == '+' || byte == '-' || byte == '.';
    });
}

} // namespace

std::optional<ProgramCommand> openCommand(std::string_view target) {
    if (!target.starts_with('/') && !hasScheme(target)) return std::nullopt;
    return ProgramCommand{openProgram, {std::string(target)}};
}

std::optional<ProgramCommand> revealCommand(std::string_view path) {
    if (!path.starts_with('/')) return std::nullopt;
    return ProgramCommand{openProgram, {"-R", std::string(path)}};
}

ProgramCommand privacySettingsCommand() {
    return {openProgram, {"x-apple.systempreferences:com.apple.preference.security?Privacy_AllFiles"}};
}

ChildProcessOptions withLimitByShell(const ChildProcessOptions& options) {
    constexpr std::int64_t blockBytes = 512;
    const std::int64_t blocks = (*options.fileSizeLimitBytes + blockBytes - 1) / blockBytes;
    ChildProcessOptions limited = options;
    limited.fileSizeLimitBytes.reset();
    limited.executable = "/bin/sh";
    limited.arguments = {"-c", R"(ulimit -f "$0" && exec "$@")", std::to_string(blocks), options.executable};
    limited.arguments.insert(limited.arguments.end(), options.arguments.begin(), options.arguments.end());
    return limited;
}

} // namespace corvane::platform::macos
