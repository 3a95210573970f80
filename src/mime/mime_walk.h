// A small walk through the parts of a message (RFC 2045, RFC 2046) for its readable text. Text is UTF-8 as
// decodeEmlx returns it. A broken part yields less text and never an error. Pure functions, linear in their
// input, any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "mime/header_decoding.h"

namespace corvane::mime {

struct PreviewCandidate {
    std::string body; // decoded
    bool isHTML = false;
};

// The text parts that aren't attachments, in document order. Parts more than three levels below depth 0 are
// left out.
std::vector<PreviewCandidate> previewCandidates(std::string_view messageText, int depth);

// A field's value without its parameters, trimmed.
std::string mimeHeaderValue(std::string_view field);

// A parameter of a field, without its quotes, trimmed; `name` in any case. Nullopt when it isn't there.
std::optional<std::string> mimeHeaderParameter(std::string_view name, std::string_view field);

// The parts between the marker lines, trimmed, with "\n" line ends. A missing closing marker costs nothing;
// empty parts are left out.
std::vector<std::string> splitMIMEParts(std::string_view text, std::string_view boundary);

// The bytes of the quoted-printable encoding (RFC 2045, 6.7); what is no valid escape stands for itself.
std::string decodeQuotedPrintableData(std::string_view text);

// A body by its transfer encoding and charset; as it is where that can't be decoded.
std::string decodedMIMEBody(std::string_view body, const HeaderMap& header);

// The text of a body in a GB charset that was read as ISO Latin 1; nullopt for any other.
std::optional<std::string> decodeUnencodedBody(std::string_view body, std::string_view charset);

} // namespace corvane::mime
