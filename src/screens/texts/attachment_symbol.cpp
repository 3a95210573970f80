#include "screens/texts/attachment_symbol.h"

#include <unordered_map>

#include "platform/paths.h"
#include "text/case.h"

namespace corvane {

std::string_view attachmentSymbol(std::string_view fileName) {
    static const auto symbols = [] {
        const struct {
            std::string_view symbol;
            std::initializer_list<std::string_view> extensions;
        } table[] = {
            {"doc.richtext", {"pdf"}},
            {"doc.text", {"doc", "docx", "rtf", "pages"}},
            {"tablecells", {"xls", "xlsx", "csv", "numbers"}},
            {"rectangle.on.rectangle", {"ppt", "pptx", "key"}},
            {"doc.zipper", {"zip", "rar", "7z", "tar", "gz", "bz2"}},
            {"photo", {"jpg", "jpeg", "png", "gif", "bmp", "tiff", "heic", "webp"}},
            {"waveform", {"mp3", "wav", "aac", "flac", "m4a", "ogg"}},
            {"film", {"mp4", "mov", "m4v", "avi", "mkv", "webm"}},
            {"doc.plaintext", {"txt", "log", "md"}},
            {"chevron.left.forwardslash.chevron.right", {"html", "htm", "xml", "json", "yml", "yaml"}},
            {"envelope", {"eml", "msg"}},
            {"shippingbox", {"exe", "dmg", "pkg", "app"}},
        };
        std::unordered_map<std::string_view, std::string_view> byExtension;
        for (const auto& row : table) {
            for (const std::string_view extension : row.extensions)
                byExtension.emplace(extension, row.symbol);
        }
        return byExtension;
    }();
    const auto known = symbols.find(text::asciiLowercased(platform::pathExtension(fileName)));
    return known == symbols.end() ? "doc" : known->second;
}

} // namespace corvane
