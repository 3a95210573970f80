// The rows of the sqlite3 shell's "-json" output, read as a stream: an array of objects without nested
// values, of which only a piece is in memory at a time.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/files/file_descriptor.h"

namespace corvane::mailstore {

// A number between -2^63 and 2^63: its integer part, towards zero, and the rest.
struct JsonNumber {
    std::int64_t whole = 0;
    double fraction = 0;
};

// One row. Asking for the columns in the order of the query costs least. The texts are valid during the
// visit.
class JsonRow {
  public:
    virtual ~JsonRow() = default;

    // Nullopt when the column is absent or of another type.
    virtual std::optional<std::string_view> text(std::string_view column) = 0;

    // Nullopt when the column is absent, of another type or out of range.
    virtual std::optional<JsonNumber> number(std::string_view column) = 0;

    // The integer part of such a number.
    std::optional<std::int64_t> integer(std::string_view column) {
        const auto found = number(column);
        return found ? std::optional(found->whole) : std::nullopt;
    }
};

using JsonRowVisitor = std::function<void(JsonRow&)>;

// Whole rows cut out of the output, made an array of their own.
struct JsonRowPiece {
    std::string bytes; // with the room behind them that the parser needs
    std::size_t length = 0;
};

// Cuts a file into pieces. One thread.
class JsonRowFile {
  public:
    // A file that can't be opened has no pieces, and `hasFailed`.
    explicit JsonRowFile(const std::string& path);

    // The next piece; nullopt at the end, and after a failure.
    std::optional<JsonRowPiece> next();

    // The file can't be read, or has a row that no mail can have.
    [[nodiscard]] bool hasFailed() const { return hasFailed_; }

  private:
    bool readChunk();
    std::optional<JsonRowPiece> cutWholeRows();
    JsonRowPiece take(std::size_t length);

    platform::FileDescriptor file_;
    std::string buffer_;
    std::size_t size_ = 0;     // of the bytes in the buffer that were read
    std::size_t searched_ = 0; // of those that hold no end of a row
    bool hasFailed_ = false;
};

// Reads the rows of pieces. Keeps its memory from piece to piece; one for each thread.
class JsonRowParser {
  public:
    JsonRowParser();
    ~JsonRowParser();

    // False when the piece isn't an array of objects; rows before the damage were visited then. Bytes that
    // are no UTF-8 are replaced by U+FFFD.
    bool parse(const JsonRowPiece& piece, const JsonRowVisitor& visit);

  private:
    struct State;

    std::unique_ptr<State> state_;
};

// An empty file has no rows. False when the file can't be read or isn't an array of objects; rows before the
// damage were visited then. Bytes that are no UTF-8 are replaced by U+FFFD.
bool readJsonRows(const std::string& path, const JsonRowVisitor& visit);

} // namespace corvane::mailstore
