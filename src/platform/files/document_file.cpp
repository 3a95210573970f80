#include "platform/files/document_file.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>

#include "platform/files/directory.h"
#include "platform/paths.h"
#include "text/case.h"

namespace corvane::platform {

namespace {

// Nothing that an interpreter or an installer takes, and no web pages, which run scripts.
bool isDocumentExtension(std::string_view extension) {
    static const std::unordered_set<std::string_view> known = {
        "pdf",  "txt",  "log",     "md",   "rtf",  "csv",  "tsv", "doc",  "docx", "odt", "pages", "xls",
        "xlsx", "ods",  "numbers", "ppt",  "pptx", "odp",  "key", "jpg",  "jpeg", "png", "gif",   "bmp",
        "tif",  "tiff", "heic",    "webp", "mp3",  "wav",  "aac", "flac", "m4a",  "ogg", "mp4",   "mov",
        "m4v",  "avi",  "mkv",     "webm", "zip",  "rar",  "7z",  "tar",  "gz",   "bz2", "eml",   "ics",
        "vcf",  "dwg",  "dxf",     "psd",  "ai",   "epub", "ofd", "wps",  "et",   "dps"};
    return known.contains(text::asciiLowercased(extension));
}

constexpr std::size_t lookedAtBytes = 4096;

constexpr auto magics = std::to_array<std::string_view>({
    "\x7f"
    "ELF",
    "#!",
    "\xFE\xED\xFA\xCE", // Mach-O in either order of bytes, 32 and 64 bit
    "\xFE\xED\xFA\xCF", "\xCE\xFA\xED\xFE", "\xCF\xFA\xED\xFE",
    "\xCA\xFE\xBA\xBE", // one for several machines, and Java
    "\xBE\xBA\xFE\xCA",
    "!<arch>\n",        // a package of Debian
    "\xED\xAB\xEE\xDB", // of Red Hat
    "xar!",             // of macOS
});

bool hasDesktopEntry(std::string_view bytes) {
    const std::size_t at = bytes.find("[Desktop Entry]");
    return at != std::string_view::npos && (at == 0 || bytes[at - 1] == '\n' || at == 3);
}

bool beginsLikeProgram(std::string_view firstBytes) {
    const auto isStart = [&](std::string_view magic) { return firstBytes.starts_with(magic); };
    if (std::ranges::any_of(magics, isStart) || hasDesktopEntry(firstBytes)) return true;
    // Of Windows and DOS; a text may begin with the same two letters.
    return firstBytes.starts_with("MZ") && firstBytes.find('\0') != std::string_view::npos;
}

} // namespace

bool isDocumentFile(const std::string& path) {
    if (!isRegularFile(path) || !isDocumentExtension(pathExtension(path))) return false;
    const std::optional<std::string> start = readFilePrefix(path, lookedAtBytes);
    return start && !beginsLikeProgram(*start);
}

} // namespace corvane::platform
