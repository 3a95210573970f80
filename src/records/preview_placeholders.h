// What stands in the place of a message's text when there is none.
#pragma once

#include <string_view>

namespace corvane {

inline constexpr std::string_view lazyPreviewPlaceholder = "正在加载正文预览...";
inline constexpr std::string_view emptyBodyPreviewPlaceholder = "暂无正文预览";

} // namespace corvane
