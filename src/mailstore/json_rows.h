// The rows of the sqlite3 shell's "-json" output, read as a stream: an array of objects without nested
// values, of which only a piece is in memory at a time.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace corvane::mailstore {

// One row. Asking for the columns in the order of the query costs least. The texts are valid during the
// visit.
class JsonRow {
  public:
    virtual ~JsonRow() = default;

    // Nothing when the column is absent or of another type.
    virtual std::optional<std::string_view> text(std::string_view column) = 0;

    // The integer part of a number. Nothing when the column is absent, of another type or out of range.
    virtual std::optional<std::int64_t> integer(std::string_view column) = 0;
};

using JsonRowVisitor = std::function<void(JsonRow&)>;

// An empty file has no rows. False when the file can't be read or isn't an array of objects; rows before the
// damage were visited then. Bytes that are no UTF-8 are replaced by U+FFFD.
bool readJsonRows(const std::string& path, const JsonRowVisitor& visit);

} // namespace corvane::mailstore
