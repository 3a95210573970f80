// Message files of the store (.emlx): a line with the length of the message, the message (RFC 5322), and a
// property list with Mail's own flags.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace corvane::mime {

class MessageFileError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// At most `byteLimit` bytes from the start of a file, without a UTF-8 character that the limit has cut.
// Throws MessageFileError when it can't be opened or read.
std::string readMessagePrefix(const std::string& path, std::int64_t byteLimit);

// The text behind the length line, as UTF-8 when the whole data is that and else as ISO Latin 1. The count
// isn't used: the text ends with the property list. Without a line feed it is the whole text.
std::string decodeEmlx(std::string_view data);

} // namespace corvane::mime
