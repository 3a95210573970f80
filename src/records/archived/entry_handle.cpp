#include "records/archived/entry_handle.h"

#include <bit>
#include <charconv>
#include <system_error>

#include <fmt/format.h>

#include "platform/files/sha256.h"

namespace corvane {

namespace {

constexpr std::size_t bitsOfDigit = 4;

} // namespace

std::uint64_t handleValue(std::string_view entryID) {
    const platform::Sha256Digest digest = platform::sha256(entryID);
    std::uint64_t value = 0;
    for (std::size_t byte = 0; byte < sizeof value; ++byte)
        value = value << 8 | static_cast<unsigned char>(digest[byte]);
    return value;
}

std::string handleDigits(std::uint64_t value, std::size_t count) {
    return fmt::format("{:016x}", value).substr(0, count);
}

std::size_t commonHandleDigits(std::uint64_t a, std::uint64_t b) {
    return static_cast<std::size_t>(std::countl_zero(a ^ b)) / bitsOfDigit;
}

std::optional<HandleRange> handlesBeginningWith(std::string_view digits) {
    if (digits.size() < shortestHandleDigits || digits.size() > fullHandleDigits) return std::nullopt;
    std::uint64_t first = 0;
    const char* const behind = digits.data() + digits.size();
    const auto [end, error] = std::from_chars(digits.data(), behind, first, 16);
    if (error != std::errc() || end != behind) return std::nullopt;
    const std::size_t open = (fullHandleDigits - digits.size()) * bitsOfDigit;
    if (open == 0) return HandleRange{first, first};
    return HandleRange{first << open, ((first + 1) << open) - 1};
}

} // namespace corvane
