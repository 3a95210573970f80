#include "archive/portable_names.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include <fmt/format.h>

#include "archive/archive_naming.h"
#include "platform/paths.h"
#include "text/case.h"
#include "text/collation.h"
#include "text/graphemes.h"
#include "text/trim.h"

namespace corvane::archive {

namespace {

// A longer one tells no type.
constexpr std::size_t longestExtension = 16;

constexpr auto devices =
    std::to_array<std::string_view>({"con", "prn", "aux", "nul", "clock$", "conin$", "conout$"});
constexpr auto settingFiles = std::to_array<std::string_view>({"autorun.inf", "desktop.ini", "thumbs.db"});
constexpr auto numberedDevices = std::to_array<std::string_view>({"com", "lpt"});
constexpr auto deviceNumbers =
    std::to_array<std::string_view>({"0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "¹", "²", "³"});

bool isDevice(std::string_view stem) {
    if (std::ranges::find(devices, stem) != devices.end()) return true;
    if (stem.size() < 4 || std::ranges::find(numberedDevices, stem.substr(0, 3)) == numberedDevices.end())
        return false;
    return std::ranges::find(deviceNumbers, stem.substr(3)) != deviceNumbers.end();
}

// Windows looks at what stands before the first dot.
std::string withoutReserved(std::string name) {
    const std::string lowered = text::asciiLowercased(name);
    const std::size_t dot = std::min(lowered.find('.'), lowered.size());
    const std::string_view stem = text::trimCharacters(std::string_view(lowered).substr(0, dot), " ");
    const bool isReserved = isDevice(stem) || std::ranges::find(settingFiles, lowered) != settingFiles.end();
    return isReserved ? name.insert(dot, "_") : name;
}

struct NameParts {
    std::string_view stem;
    std::string_view extension; // with its dot
};

NameParts partsOf(std::string_view name) {
    const std::size_t length = platform::pathExtension(name).size();
    if (length == 0 || length > longestExtension) return {.stem = name, .extension = {}};
    return {.stem = name.substr(0, name.size() - length - 1),
            .extension = name.substr(name.size() - length - 1)};
}

// The stem loses characters at its end until all fits.
std::string fitting(const NameParts& parts, std::string_view tail) {
    const std::size_t room = maximumNameBytes - parts.extension.size() - tail.size();
    const std::string_view stem = text::graphemePrefixWithinBytes(parts.stem, room);
    return fmt::format("{}{}{}", text::trimCharacters(stem, " ."), tail, parts.extension);
}

} // namespace

std::string portableFileName(std::string_view name) {
    const std::string safe = withoutReserved(safeFileName(name));
    return safe.size() <= maximumNameBytes ? safe : safeFileName(fitting(partsOf(safe), ""));
}

std::string UniqueNames::next(std::string_view folder, const std::string& portableName) {
    const auto keyOf = [&](const std::string& name) {
        return fmt::format("{}/{}", folder, text::lowercased(text::canonicallyComposed(name)));
    };
    std::int64_t& number = lastNumbers_.try_emplace(keyOf(portableName), 0).first->second;
    while (true) {
        if (++number == 1) return portableName;
        std::string numbered = fitting(partsOf(portableName), fmt::format("-{}", number));
        if (lastNumbers_.try_emplace(keyOf(numbered), 1).second) return numbered;
    }
}

} // namespace corvane::archive
