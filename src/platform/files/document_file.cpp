#include "platform/files/document_file.h"

#include <algorithm>
#include <cctype>
#include <optional>
#include <string_view>
#include <unordered_set>

#include "platform/files/directory.h"
#include "platform/paths.h"

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
    std::string lowered(extension);
    std::transform(lowered.begin(), lowered.end(), lowered.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return known.contains(lowered);
}

bool beginsLikeAProgram(std::string_view head) {
    constexpr std::string_view beginnings[] = {"#!",
                                               "MZ",
                                               "\x7f"
                                               "ELF",
                                               "\xCF\xFA\xED\xFE",
                                               "\xCA\xFE\xBA\xBE",
                                               "[Desktop Entry]"};
    return std::any_of(std::begin(beginnings), std::end(beginnings),
                       [&](std::string_view beginning) { return head.starts_with(beginning); });
}

} // namespace

bool isDocumentFile(const std::string& path) {
    if (!isRegularFile(path) || !isDocumentExtension(pathExtension(path))) return false;
    const std::optional<std::string> head = readFilePrefix(path, 16);
    return head && !beginsLikeAProgram(*head);
}

} // namespace corvane::platform
