// A mail's text taken apart for the reading pane and for a row of the library.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz_kit.h"
#include "mime/body/body_segments.h"
#include "mime/body/body_snippets.h"
#include "mime/body/body_split.h"
#include "text/trim.h"

using namespace corvane;
using fuzz::require;

namespace {

bool isPartOf(std::string_view part, std::string_view text) {
    return part.data() >= text.data() && part.data() + part.size() <= text.data() + text.size();
}

void checkSplits(std::string_view text) {
    const mime::QuotedSplit history = mime::splitQuoted(text);
    require(isPartOf(history.main, text));
    if (history.quoted)
        require(!history.main.empty() && !text::trimWhitespaceAndNewlines(*history.quoted).empty());
    const mime::SignatureSplit signature = mime::splitSignature(history.main);
    require(isPartOf(signature.body, history.main));
    if (signature.signature) require(!signature.body.empty() && !signature.signature->empty());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = fuzz::textOf(data, size);
    checkSplits(text);
    const mime::BodyParts parts = mime::splitBody(text);
    for (const bool isExpanded : {false, true}) {
        const mime::ShownParts shown{.showQuoted = true, .quotedRecipientsExpanded = isExpanded};
        require(mime::bodySegments(parts, shown).front().text == parts.bodyText);
    }
    for (const mime::Segment& segment : mime::parseQuotedSegments(text)) {
        require(!segment.text.empty());
        require(segment.text.find(mime::quoteMarker) == std::string::npos);
        require(segment.text.find(mime::signatureMarker) == std::string::npos);
    }
    const std::string_view query = text.substr(0, text.find('\n'));
    if (const auto snippet = mime::snippet(text, query)) {
        for (const auto& place : snippet->highlighted) require(place.end() <= snippet->text.size());
    }
    if (const auto preview = mime::rowPreviewText(text)) require(!preview->empty());
    return 0;
}
