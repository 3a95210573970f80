#include "records/file_url.h"

#include "platform/paths.h"
#include "text/charsets/encoding.h"

namespace corvane {

namespace {

constexpr std::string_view scheme = "file://";

} // namespace

std::string_view FileURL::lastPathComponent() const {
    return platform::lastPathComponent(path_);
}

std::string FileURL::absoluteString() const {
    return std::string(scheme) + text::percentEncodedPath(path_);
}

std::optional<FileURL> FileURL::fromAbsoluteString(std::string_view text) {
    if (!text.starts_with(scheme)) return std::nullopt;
    text.remove_prefix(scheme.size());
    if (text.empty()) return FileURL();
    if (text.starts_with("localhost/")) text.remove_prefix(9);
    if (!text.starts_with('/')) return std::nullopt;
    auto path = text::percentDecoded(text);
    if (!path) return std::nullopt;
    return FileURL(SharedText(*path));
}

} // namespace corvane
