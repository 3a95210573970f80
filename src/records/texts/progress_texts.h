// What an archive run says of itself where more than one part of the program says it.
#pragma once

#include <cstdint>
#include <string>

#include <fmt/format.h>

namespace corvane {

// Before the first message.
inline std::string preparingText(std::int64_t messages) {
    return fmt::format("准备归档 {} 封邮件...", messages);
}

} // namespace corvane
