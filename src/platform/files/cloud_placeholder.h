// The files by which a cloud provider's folder stands for a file whose content lies elsewhere. Text only.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace corvane::platform {

// Beside the file, which isn't there then: ".NAME.icloud". Newer systems keep the file itself, without its
// content, and need no such name.
std::string cloudPlaceholderPath(std::string_view path);

// The name of the file that an entry of a folder stands for; absent when it is no placeholder.
std::optional<std::string> nameBehindPlaceholder(std::string_view entryName);

} // namespace corvane::platform
