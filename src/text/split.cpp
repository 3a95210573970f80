#include "text/split.h"

namespace corvane::text {

std::vector<std::string_view> splitText(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    while (true) {
        const std::size_t end = text.find(separator);
        parts.push_back(text.substr(0, end));
        if (end == std::string_view::npos) return parts;
        text.remove_prefix(end + 1);
    }
}

std::vector<std::string_view> splitNonEmpty(std::string_view text, char separator) {
    std::vector<std::string_view> parts = splitText(text, separator);
    std::erase_if(parts, [](std::string_view part) { return part.empty(); });
    return parts;
}

std::string replacingAll(std::string_view text, std::string_view part, std::string_view replacement) {
    if (part.empty()) return std::string(text);
    std::string result;
    while (true) {
        const std::size_t found = text.find(part);
        result.append(text.substr(0, found));
        if (found == std::string_view::npos) return result;
        result.append(replacement);
        text.remove_prefix(found + part.size());
    }
}

} // namespace corvane::text
