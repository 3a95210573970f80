#include "records/stable_hash.h"

#include <cstdint>

#include <fmt/format.h>

namespace corvane {

std::string stableHash(std::string_view text) {
    std::uint64_t state = 0x14650fb0739d0383ULL;
    for (const char byte : text) {
        state ^= static_cast<unsigned char>(byte);
        state *= 0x100000001b3ULL;
    }
    return fmt::format("{:x}", state);
}

} // namespace corvane
