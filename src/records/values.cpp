#include "records/values.h"

#include <random>

#include <fmt/format.h>

namespace corvane {

Uuid Uuid::random() {
    static thread_local std::mt19937_64 generator = [] {
        std::random_device device;
        std::seed_seq seed{device(), device(), device(), device()};
        return std::mt19937_64(seed);
    }();
    Uuid uuid{generator(), generator()};
    uuid.high = (uuid.high & ~0xF000ULL) | 0x4000ULL;
    uuid.low = (uuid.low & ~(0x3ULL << 62)) | (0x2ULL << 62);
    return uuid;
}

std::optional<Uuid> Uuid::parse(std::string_view text) {
    if (text.size() != 36) return std::nullopt;
    Uuid uuid;
    unsigned digits = 0;
    for (std::size_t index = 0; index < text.size(); ++index) {
        const char character = text[index];
        if (index == 8 || index == 13 || index == 18 || index == 23) {
            if (character != '-') return std::nullopt;
            continue;
        }
        unsigned value = 0;
        if (character >= '0' && character <= '9')
            value = static_cast<unsigned>(character - '0');
        else if (character >= 'A' && character <= 'F')
            value = static_cast<unsigned>(character - 'A' + 10);
        else if (character >= 'a' && character <= 'f')
            value = static_cast<unsigned>(character - 'a' + 10);
        else
            return std::nullopt;
        std::uint64_t& half = digits++ < 16 ? uuid.high : uuid.low;
        half = half << 4 | value;
    }
    return uuid;
}

std::string Uuid::text() const {
    return fmt::format("{:08X}-{:04X}-{:04X}-{:04X}-{:012X}", high >> 32, high >> 16 & 0xFFFF, high & 0xFFFF,
                       low >> 48, low & 0xFFFFFFFFFFFFULL);
}

} // namespace corvane
