#include "mime/attachment_names.h"

#include <algorithm>
#include <array>

#include <fmt/format.h>

#include "mime/header_decoding.h"
#include "platform/paths.h"
#include "text/case.h"
#include "text/charsets/encoding.h"
#include "text/regex.h"
#include "text/split.h"
#include "text/trim.h"

namespace corvane::mime {

namespace {

constexpr std::array<std::string_view, 11> imageExtensions = {"jpg",  "jpeg", "png",  "heic", "heif", "gif",
                                                              "tiff", "tif",  "webp", "bmp",  "svg"};

std::string withPlainBlanks(std::string_view text) {
    static const text::Regex otherBlank("[\\p{Zs}\\t]");
    const auto needsWork = [](char c) { return c == '\t' || static_cast<unsigned char>(c) >= 0x80; };
    if (std::ranges::none_of(text, needsWork)) return std::string(text);
    return otherBlank.replacingAll(text, " ");
}

bool isCharsetTag(std::string_view tag) {
    static constexpr std::array<std::string_view, 6> known = {"utf-8", "utf8",   "us-ascii",
                                                              "gbk",   "gb2312", "big5"};
    return std::ranges::find(known, tag) != known.end() || tag.starts_with("iso-") ||
           tag.starts_with("windows-");
}

// RFC 2231, section 4: charset''percent-encoded.
std::string withoutExtendedNotation(std::string name) {
    const std::size_t quotes = name.find("''");
    if (quotes == std::string::npos) return name;
    if (isCharsetTag(text::lowercased(std::string_view(name).substr(0, quotes)))) name.erase(0, quotes + 2);
    return text::percentDecoded(name).value_or(name);
}

std::string_view withoutContentIdentifier(std::string_view name) {
    const std::size_t close = name.starts_with('<') ? name.find('>') : std::string_view::npos;
    if (close == std::string_view::npos) return name;
    if (name.substr(0, close).find('@') == std::string_view::npos) return name;
    return text::trimBlanks(name.substr(close + 1));
}

std::string withTightDots(std::string_view name) {
    auto pieces = text::splitText(name, '.');
    if (pieces.size() < 2) return std::string(name);
    for (std::string_view& piece : pieces) piece = text::trimBlanks(piece);
    std::erase_if(pieces, [](std::string_view piece) { return piece.empty(); });
    return pieces.empty() ? std::string(name) : fmt::format("{}", fmt::join(pieces, "."));
}

struct Label {
    std::string_view name;
    std::array<std::string_view, 10> extensions;
};

constexpr std::array<Label, 6> labels = {{
    {"PDF 文档", {"pdf"}},
    {"图片", {"jpg", "jpeg", "png", "heic", "heif", "gif", "tiff", "tif", "webp", "svg"}},
    {"文档", {"doc", "docx", "pages"}},
    {"表格", {"xls", "xlsx", "numbers", "csv"}},
    {"演示文稿", {"ppt", "pptx", "key"}},
    {"压缩/安装包", {"zip", "rar", "7z", "dmg"}},
}};

} // namespace

std::string cleanAttachmentName(std::string_view name) {
    std::string cleaned = withPlainBlanks(text::trimCharacters(name, "\"' \t\r\n"));
    cleaned = decodeHeaderValue(withoutExtendedNotation(std::move(cleaned)));
    std::erase(cleaned, '\\');
    return withTightDots(withoutContentIdentifier(cleaned));
}

std::string mimeTypeGuess(std::string_view name, std::string_view contentType) {
    const std::string_view written = platform::pathExtension(name);
    const std::string extension = text::lowercased(written);
    for (const Label& label : labels) {
        if (!extension.empty() && std::ranges::find(label.extensions, extension) != label.extensions.end())
            return std::string(label.name);
    }
    if (!contentType.empty() && !text::equalsIgnoringCase(contentType, "application/octet-stream"))
        return std::string(contentType);
    return written.empty() ? "附件" : text::uppercased(written);
}

bool mayContainEmbeddedAttachment(std::string_view mimeText) {
    static constexpr std::array<std::string_view, 7> marks = {
        "content-disposition: attachment",
        "filename=",
        "filename*=",
        "filename*0*=",
        " name=",
        "\nname=",
        "x-apple-part-url"}; // "\r\nname=" has "\nname=" in it
    const std::string lowered = text::asciiLowercased(mimeText);
    return std::ranges::any_of(
        marks, [&](std::string_view mark) { return lowered.find(mark) != std::string::npos; });
}

bool hasImageExtension(std::string_view name) {
    const std::string extension = text::lowercased(platform::pathExtension(name));
    return std::ranges::find(imageExtensions, extension) != imageExtensions.end();
}

std::vector<std::string> splitCaretJoinedName(std::string_view name) {
    std::vector<std::string> pieces;
    for (std::string_view rest = name;;) {
        const std::size_t joint = rest.find("^_");
        const std::string_view piece = rest.substr(0, joint);
        if (platform::pathExtension(piece).empty()) return {std::string(name)};
        pieces.emplace_back(piece);
        if (joint == std::string_view::npos) return pieces;
        rest.remove_prefix(joint + 2);
    }
}

} // namespace corvane::mime
