// What a record says of a mail, taken from the mail's own header, for files of which nothing else is known.
// The texts are those that Mail's index gives for the same mail as far as its header tells: encoded words are
// decoded by RFC 2047, in which the decoding for lists differs. Pure, linear, any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "records/values.h"
#include "text/shared_text.h"

namespace corvane::archive {

struct HeaderSummary {
    std::optional<SharedText> messageIdentifier; // normalised
    std::optional<std::vector<SharedText>> referencedMessageIdentifiers;
    SharedText subject; // `missingSubject` where there is none
    SharedText sender;  // `missingSender` where there is none
    SharedText recipients;
    std::optional<SharedText> ccRecipients;
    std::optional<Date> date;
};

// Of the first bytes of a mail, its whole header among them; lines may end in LF, CR LF or CR alone. Absent
// when there is none of the fields that every mail has: Message-ID, From, To, Subject, Date.
std::optional<HeaderSummary> headerSummary(std::string_view start);

// The encoded words of a header value decoded (RFC 2047): white space between two of them goes, "_" is a
// blank in the Q encoding only, and neighbours of one charset are decoded together, since some programs cut
// characters apart. A word that can't be decoded stays as it is.
std::string decodedWords(std::string_view value);

// "name <address>" of each address in a From, To or Cc field, joined by ", ": names without their quotes and
// decoded.
std::string shownAddresses(std::string_view value);

} // namespace corvane::archive
