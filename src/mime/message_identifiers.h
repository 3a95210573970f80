// The Message-ID and reference headers in the form in which messages are compared. Pure functions.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvane::mime {

// Decoded, without white space and angle brackets at the ends, in lower case; nullopt when that is empty.
std::optional<std::string> normalizedMessageIdentifier(std::string_view header);

// The same as a view of the header, where it stands there already, or of `room`; empty for none.
std::string_view normalizedMessageIdentifier(std::string_view header, std::string& room);

// Each identifier in angle brackets once, in order; the whole text as one when there is none;
// empty for an empty text.
std::vector<std::string> normalizedMessageIdentifiers(std::string_view header);

// Those of References, else only the first of In-Reply-To. An absent header is empty; nullopt without any
// identifier.
std::optional<std::vector<std::string>> normalizedReferencedMessageIdentifiers(std::string_view references,
                                                                               std::string_view inReplyTo);

// "name <address>", or the one of both that isn't empty.
std::string formattedAddress(std::string_view name, std::string_view address);

} // namespace corvane::mime
