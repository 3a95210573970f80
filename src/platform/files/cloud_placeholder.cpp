#include "platform/files/cloud_placeholder.h"

#include <fmt/format.h>

#include "platform/paths.h"

namespace corvane::platform {

namespace {

constexpr std::string_view suffix = ".icloud";

} // namespace

std::string cloudPlaceholderPath(std::string_view path) {
    return joinPath(parentPath(path), fmt::format(".{}{}", lastPathComponent(path), suffix));
}

std::optional<std::string> nameBehindPlaceholder(std::string_view entryName) {
    if (!entryName.starts_with('.') || !entryName.ends_with(suffix)) return std::nullopt;
    if (entryName.size() <= 1 + suffix.size()) return std::nullopt;
    return std::string(entryName.substr(1, entryName.size() - 1 - suffix.size()));
}

} // namespace corvane::platform
