#include "platform/paths.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace corvane::platform {

namespace {

std::string_view withoutTrailingSlashes(std::string_view path) noexcept {
    while (path.size() > 1 && path.back() == '/') path.remove_suffix(1);
    return path;
}

std::string workingDirectory() {
    std::error_code error;
    std::string current = std::filesystem::current_path(error).string();
    return error ? "/" : current;
}

// Takes the first component and the slashes behind it off the path.
std::string_view takeComponent(std::string_view& path) noexcept {
    const std::size_t start = std::min(path.find_first_not_of('/'), path.size());
    const std::size_t end = std::min(path.find('/', start), path.size());
    const std::string_view component = path.substr(start, end - start);
    path.remove_prefix(end);
    return component;
}

// `result` holds absolute text without a trailing slash; empty stands for the root.
void appendStandardized(std::string& result, std::string_view path) {
    while (!path.empty()) {
        const std::string_view component = takeComponent(path);
        if (component.empty() || component == ".") continue;
        if (component == "..") {
            if (!result.empty()) result.erase(result.rfind('/'));
        } else {
            result.append("/").append(component);
        }
    }
}

} // namespace

std::string joinPath(std::string_view base, std::string_view part) {
    if (base.empty()) return std::string(part);
    while (!base.empty() && base.back() == '/') base.remove_suffix(1);
    while (!part.empty() && part.front() == '/') part.remove_prefix(1);
    std::string joined;
    joined.reserve(base.size() + 1 + part.size());
    return joined.append(base).append("/").append(part);
}

std::string_view lastPathComponent(std::string_view path) noexcept {
    path = withoutTrailingSlashes(path);
    if (path.size() <= 1) return path;
    return path.substr(path.rfind('/') + 1);
}

std::string_view parentPath(std::string_view path) noexcept {
    path = withoutTrailingSlashes(path);
    const std::size_t slash = path.rfind('/');
    if (slash == std::string_view::npos) return {};
    return withoutTrailingSlashes(path.substr(0, slash + 1));
}

std::string_view pathExtension(std::string_view path) noexcept {
    const std::string_view name = lastPathComponent(path);
    const std::size_t dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0) return {};
    return name.substr(dot + 1);
}

std::string_view withoutExtension(std::string_view path) noexcept {
    const std::string_view extension = pathExtension(path);
    if (extension.empty()) return path;
    return withoutTrailingSlashes(path).substr(0, withoutTrailingSlashes(path).size() - extension.size() - 1);
}

std::string standardizedPath(std::string_view path) {
    std::string result;
    if (!path.starts_with('/')) appendStandardized(result, workingDirectory());
    appendStandardized(result, path);
    return result.empty() ? "/" : result;
}

std::string canonicalPath(std::string_view path) {
    return standardizedPath(path);
}

bool isAtOrBelow(std::string_view path, std::string_view folder) noexcept {
    return path.starts_with(folder) &&
           (path.size() == folder.size() || folder == "/" || path[folder.size()] == '/');
}

bool isSafeRelativePath(std::string_view path) noexcept {
    if (path.starts_with('/') || path.find('\0') != std::string_view::npos) return false;
    std::size_t depth = 0;
    while (!path.empty()) {
        const std::string_view component = takeComponent(path);
        if (component.empty() || component == ".") continue;
        if (component != "..") {
            ++depth;
        } else if (depth-- == 0) {
            return false;
        }
    }
    return depth > 0;
}

} // namespace corvane::platform
