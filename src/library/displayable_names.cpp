#include "library/displayable_names.h"

#include <algorithm>
#include <array>
#include <string>
#include <unordered_map>

#include "platform/paths.h"
#include "text/case.h"
#include "text/trim.h"

namespace corvane {

namespace {

constexpr auto pictureExtensions =
    std::to_array<std::string_view>({"png", "jpg", "jpeg", "gif", "bmp", "emz", "wmz"});
constexpr std::string_view programsPrefix = "image";

bool isDigit(char byte) {
    return byte >= '0' && byte <= '9';
}

} // namespace

bool isDisplayableName(std::string_view name) {
    const std::string lowered = text::asciiLowercased(text::trimWhitespaceAndNewlines(name));
    if (lowered.empty()) return false;
    const std::string_view stem = platform::withoutExtension(lowered);
    const std::string_view extension = platform::pathExtension(lowered);
    const bool isPicture = std::ranges::find(pictureExtensions, extension) != pictureExtensions.end();
    if (!isPicture || !stem.starts_with(programsPrefix)) return true;
    const std::string_view number = stem.substr(programsPrefix.size());
    return number.size() < 3 || !std::ranges::all_of(number, isDigit);
}

std::vector<DisplayableName> displayableNames(const std::vector<SharedText>& attachmentNames) {
    std::vector<DisplayableName> shown;
    std::unordered_map<std::string, std::size_t> seen; // a path and its last name may be the same to a mail
    for (const SharedText& name : attachmentNames) {
        const std::size_t occurrence = seen[std::string(platform::lastPathComponent(name))]++;
        if (isDisplayableName(name)) shown.push_back({name, occurrence});
    }
    return shown;
}

} // namespace corvane
