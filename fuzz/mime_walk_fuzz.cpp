// The walk through the parts of a message, and its text laid out for a list.
#include <cstdint>
#include <string_view>

#include "fuzz_kit.h"
#include "mailstore/scan/attachment_resolution.h"
#include "mime/emlx.h"
#include "mime/mime_walk.h"
#include "mime/preview_layout.h"
#include "mime/preview_text.h"
#include "mime/signature_search.h"
#include "text/charsets/charset.h"
#include "text/graphemes.h"

using namespace corvane;
using fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes = fuzz::textOf(data, size);
    const std::string message = mime::decodeEmlx(bytes);
    require(text::isValidUtf8(message));
    const std::string preview = mime::previewText(message);
    require(!preview.empty() && text::isValidUtf8(preview));
    require(text::graphemeCount(preview) <= 280);
    for (const auto& candidate : mime::previewCandidates(message, 0)) {
        require(text::isValidUtf8(candidate.body));
        require(mime::stripSignatureContent(candidate.body).size() <= candidate.body.size());
    }
    std::size_t partBytes = 0;
    for (const std::string& part : mime::splitMIMEParts(message, "b")) partBytes += part.size();
    require(partBytes <= message.size());
    const std::string normalized = mime::normalizedPreviewFormatting(message);
    require(normalized.size() <= message.size());
    mime::previewLooksCorrupt(message);
    for (const auto& attachment : mailstore::extractAttachments(message)) {
        require(!attachment.fileName.empty() && text::isValidUtf8(attachment.fileName));
    }
    mime::decodeQuotedPrintableData(bytes);
    return 0;
}
