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

    [[nodiscard]] std::string_view body() const;
};

// The message in a whole .emlx file: its first line is a decimal count of bytes, which follow the line; a
// property list behind them is left out. A file that is shorter than its count gives what is there. Absent
// when there is no line, no count or a negative one.
std::optional<std::string_view> messageData(std::string_view emlx);

// Whether `message`, as it was cut out of this file, has all the bytes that the file's count promises, and
// any byte other than zero.
bool isWholeMessage(std::string_view emlx, std::string_view message);

// The position behind the first line that is empty or blank, whichever of LF, CR LF and CR ends it; that of
// the first line that is no header field nor continues one, where this comes before. 0 when there is neither:
// where nothing says what is header, all of it counts, for copies whose bodies are equal are taken for one.
std::size_t bodyStartIndex(std::string_view message) noexcept;

// Copies with equal bodies, as positions among all copies. Headers, which Mail changes from mailbox to
// mailbox, play no part.
struct BodyGroup {
    std::vector<std::size_t> copies; // ascending
    std::size_t largest = 0;         // the earliest among equals
};

// In the order in which the bodies come first. Bodies are equal when all their bytes are.
std::vector<BodyGroup> groupByBody(const std::vector<MessageBytes>& copies);

} // namespace corvane::archive
