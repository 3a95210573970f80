// Takes the message out of the .emlx files in which Mail stores it, and tells which stored copies of one
// message have the same body. Pure functions on bytes, linear in their input, safe on any thread.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvane::archive {

// The bytes of one message inside the file that was read, without a copy. Sharing keeps them alive for a
// write that outlasts its time limit.
struct MessageBytes {
    std::shared_ptr<const std::string> file;
    std::string_view bytes; // inside *file

    // Absent when the file can't be cut.
    static std::optional<MessageBytes> fromEmlx(std::string file);
};

// The message in a whole .emlx file: its first line is a decimal count of bytes, which follow the line; a
// property list behind them is left out. A file that is shorter than its count gives what is there. Nothing
// when there is no line, no count or a negative one.
std::optional<std::string_view> messageData(std::string_view emlx);

// The position behind the first CR LF CR LF or LF LF; the size when there is neither.
std::size_t bodyStartIndex(std::string_view message) noexcept;

// Copies with equal bodies. Of them only the largest is kept, the earliest among equals: a group never holds
// more than one message in memory.
struct BodyGroup {
    MessageBytes largest;
    std::string_view body; // of `largest`
};

// Adds a copy to the group of its body, or a new group behind the others. Bodies count as equal when they
// have the same length and the same first 8192 bytes; headers, which Mail changes from mailbox to mailbox,
// play no part.
void groupByBody(MessageBytes copy, std::vector<BodyGroup>& groups);

} // namespace corvane::archive
