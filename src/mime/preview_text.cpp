#include "mime/preview_text.h"

#include <algorithm>

#include "mime/emlx.h"
#include "mime/mime_walk.h"
#include "mime/preview_layout.h"
#include "records/texts/preview_placeholders.h"
#include "text/graphemes.h"

namespace corvane::mime {

namespace {

// Mail's own flags behind the message would be shown as text, and with them no base64 body can be decoded.
// They are found by their looks: the count in front of the message may be wrong.
std::string_view withoutPropertyList(std::string_view text) {
    const std::size_t last = text.find_last_not_of(" \t\r\n");
    if (last == std::string_view::npos || !text.substr(0, last + 1).ends_with("</plist>")) return text;
    return text.substr(0, text.rfind("<?xml "));
}

} // namespace

std::string previewTextWithoutWorker(const FileURL& file) {
    const std::string text = decodeEmlx(readMessagePrefix(file.path().str(), previewByteLimit));
    return previewText(withoutPropertyList(text));
}

std::string previewText(std::string_view messageText) {
    const auto candidates = previewCandidates(messageText, 0);
    auto chosen = std::ranges::find(candidates, false, &PreviewCandidate::isHTML);
    if (chosen == candidates.end()) chosen = candidates.begin();
    const std::string text = chosen == candidates.end() ? std::string() : plainPreviewText(chosen->body);
    if (text.empty()) return std::string(emptyBodyPreviewPlaceholder);
    return std::string(text::graphemePrefix(text, previewCharacters));
}

} // namespace corvane::mime
