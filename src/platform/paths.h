// Paths as UTF-8 text with '/' as separator, taken apart and put together without touching the disk.
#pragma once

#include <string>
#include <string_view>

namespace corvane::platform {

// One '/' between both; an absolute or empty part isn't treated specially; with an empty base the part alone.
std::string joinPath(std::string_view base, std::string_view part);

// The text behind the last '/', trailing slashes left out; "/" gives "/".
std::string_view lastPathComponent(std::string_view path) noexcept;

// The path without its last component: "/a/b" gives "/a", "/a" gives "/", "a" gives "".
std::string_view parentPath(std::string_view path) noexcept;

// The text behind the last '.' of the last component; empty when there is none or the name begins with its
// only dot.
std::string_view pathExtension(std::string_view path) noexcept;

// The path without the extension and its dot; unchanged when there is no extension.
std::string_view withoutExtension(std::string_view path) noexcept;

// "." and ".." and repeated slashes resolved as text, made absolute against the working directory, without a
// trailing slash. Links aren't resolved.
std::string standardizedPath(std::string_view path);

// The form in which lists of folders are kept and compared: the standardized path.
std::string canonicalPath(std::string_view path);

// Whether the path is the folder or lies below it, by their texts alone; both standardized.
bool isAtOrBelow(std::string_view path, std::string_view folder) noexcept;

// Whether a relative path from an untrusted source stays below its root: not absolute, without NUL, never
// leaving by ".." even for a moment, and not naming the root itself ("", ".", "a/.."). Links aren't looked
// at.
bool isSafeRelativePath(std::string_view path) noexcept;

} // namespace corvane::platform
