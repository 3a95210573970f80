#include "platform/processes/launch_texts.h"

#include <cerrno>
#include <string_view>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <fmt/format.h>

namespace corvane::platform {

namespace {

[[noreturn]] void throwLastError(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

FileDescriptor sourceOfStream(int descriptor) {
    if (descriptor >= 0) return copyAboveStandardStreams(descriptor);
    const FileDescriptor nothing(::open("/dev/null", O_RDWR | O_CLOEXEC));
    if (!nothing) throwLastError("/dev/null");
    return copyAboveStandardStreams(nothing.get());
}

bool isVariable(std::string_view entry, const std::string& name) {
    return entry.size() > name.size() && entry.starts_with(name) && entry[name.size()] == '=';
}

std::vector<std::string> environmentWith(char** own,
                                         const std::vector<std::pair<std::string, std::string>>& added) {
    std::vector<std::string> result;
    for (char** entry = own; entry != nullptr && *entry != nullptr; ++entry) {
        bool isReplaced = false;
        for (const auto& [name, value] : added) isReplaced = isReplaced || isVariable(*entry, name);
        if (!isReplaced) result.emplace_back(*entry);
    }
    for (const auto& [name, value] : added) result.push_back(fmt::format("{}={}", name, value));
    return result;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (auto& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

void rejectNul(const std::vector<std::string>& texts) {
    for (const auto& text : texts) {
        if (text.find('\0') != std::string::npos) {
            throw std::system_error(EINVAL, std::generic_category(), "NUL in an argument");
        }
    }
}

} // namespace

LaunchTexts::LaunchTexts(const ChildProcessOptions& options, char** environment)
  : argumentTexts_{options.executable}
  , environmentTexts_(environmentWith(environment, options.environment)) {
    argumentTexts_.insert(argumentTexts_.end(), options.arguments.begin(), options.arguments.end());
    rejectNul(argumentTexts_);
    rejectNul(environmentTexts_);
    arguments_ = pointersTo(argumentTexts_);
    environment_ = pointersTo(environmentTexts_);
}

LaunchStreams::LaunchStreams(const ChildProcessOptions& options)
  : sources_{sourceOfStream(options.standardInput), sourceOfStream(options.standardOutput),
             sourceOfStream(options.standardError)} {}

FileDescriptor copyAboveStandardStreams(int descriptor) {
    FileDescriptor copy(::fcntl(descriptor, F_DUPFD_CLOEXEC, 3));
    if (!copy) throwLastError("fcntl");
    return copy;
}

} // namespace corvane::platform
