// The outermost structure of a large JSON text, without looking into the values: the members of an object,
// and an array cut into pieces of whole elements. With it a file of hundreds of megabytes is decoded piece by
// piece, on several threads, in memory that doesn't grow with the file. Only quotes and brackets are followed
// here; the pieces are checked by the parser that reads them.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace corvane {

struct JsonMember {
    std::string_view key; // as written, escapes unresolved
    std::string_view value;
};

class JsonObjectOutline {
  public:
    // `json` must be one object with only white space around it.
    explicit JsonObjectOutline(std::string_view json);

    // The next member; absent behind the last. Throws JsonError where the structure is broken.
    std::optional<JsonMember> next();

  private:
    std::string_view text_;
    std::size_t position_ = 0;
    bool first_ = true;
};

class JsonArrayPieces {
  public:
    // `array` is the text of one array with its brackets.
    JsonArrayPieces(std::string_view array, std::size_t pieceBytes);

    // The next run of whole elements with the commas between them, of about the wanted size (a larger element
    // stands alone); absent behind the last. Throws JsonError where the structure is broken.
    std::optional<std::string_view> next();

  private:
    std::string_view text_;
    std::size_t pieceBytes_;
    std::size_t position_ = 0;
    bool done_ = false;
};

} // namespace corvane
