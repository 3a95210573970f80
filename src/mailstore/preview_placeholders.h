// What stands in a record's preview when there is no text of the message in it.
#pragma once

#include <string_view>

namespace corvane::mailstore {

inline constexpr std::string_view lazyPreviewPlaceholder = "正在加载正文预览...";
inline constexpr std::string_view emptyBodyPreviewPlaceholder = "暂无正文预览";

} // namespace corvane::mailstore
