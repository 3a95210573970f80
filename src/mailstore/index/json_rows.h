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

// One row. Asking for the columns in the order of the query costs least. The texts are valid during the
// visit.
class JsonRow {
  public:
    virtual ~JsonRow() = default;

    // Nullopt when the column is absent or of another type.
    virtual std::optional<std::string_view> text(std::string_view column) = 0;

    // The integer part of a number. Nullopt when the column is absent, of another type or out of range.
    virtual std::optional<std::int64_t> integer(std::string_view column) = 0;
};

using JsonRowVisitor = std::function<void(JsonRow&)>;

// Whole rows cut out of the output, made an array of their own.
struct JsonRowPiece {
    std::string bytes; // with the room behind them that the parser needs
    std::size_t length = 0;
};

// Cuts a file that may still be growing into pieces. One thread.
class JsonRowFile {
  public:
    // A file that can't be opened has no pieces, and `hasFailed`.
    explicit JsonRowFile(const std::string& path);

    // The next piece; nullopt when there isn't enough for one yet. Of a file that is complete every row
    // comes; nullopt then means the end.
    std::optional<JsonRowPiece> next(bool isComplete);

    // The file can't be read.
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
