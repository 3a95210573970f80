// What one line of a mail's text is: where a quoted mail, a signature or a disclaimer may begin. Pure
// functions on UTF-8 lines without their "\n", linear in the line, any thread.
#pragma once

#include <string_view>

namespace corvane::mime {

// Whether the quoted history of a mail begins with the line: a quoted line, a rule of underscores, the head
// of a forwarded or answered mail.
bool isQuoteBoundary(std::string_view line);

// Whether a lawyer's closing begins with the line.
bool isDisclaimer(std::string_view line);

// Whether the line is numbered or a bullet, and so the message's own although it stands above a signature.
bool isLikelyBodyLine(std::string_view line);

// A short line of a signature: a telephone number, an address and the like with its label.
bool isContactLine(std::string_view line);

// The label of recipients that the line begins with behind its blanks, as it is written, such as "Cc:"; empty
// without one.
std::string_view recipientLabel(std::string_view line);

} // namespace corvane::mime
