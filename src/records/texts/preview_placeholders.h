// The limits of a message's preview: its length, and what stands in its place when there is none.
#pragma once

#include <cstddef>
#include <string_view>

namespace corvane {

// In user-perceived characters; a longer text is cut there.
inline constexpr std::size_t previewCharacters = 280;

inline constexpr std::string_view lazyPreviewPlaceholder = "正在加载正文预览...";
inline constexpr std::string_view emptyBodyPreviewPlaceholder = "暂无正文预览";

// False when a text stands in the place of the message's own, or there is none.
inline bool isPreviewText(std::string_view preview) {
    return !preview.empty() && preview != lazyPreviewPlaceholder && preview != emptyBodyPreviewPlaceholder;
}

} // namespace corvane
