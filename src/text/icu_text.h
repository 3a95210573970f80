// UTF-8 views in the shapes that ICU takes, for the files of this folder. ICU counts in 32 bits: a longer
// text is refused here, so that no length is ever cut in silence.
#pragma once

#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string_view>

#include <unicode/stringpiece.h>
#include <unicode/utext.h>

#include "text/charsets/unicode_error.h"

namespace corvane::text {

inline icu::StringPiece icuPiece(std::string_view text) {
    if (text.size() > std::numeric_limits<std::int32_t>::max()) throw std::length_error("text beyond 2 GiB");
    return {text.data(), static_cast<std::int32_t>(text.size())};
}

// A UText over UTF-8, with native indexes in bytes. Must not outlive the characters.
class Utf8Text {
  public:
    explicit Utf8Text(std::string_view text) {
        const icu::StringPiece piece = icuPiece(text);
        UErrorCode status = U_ZERO_ERROR;
        utext_openUTF8(&text_, piece.empty() ? "" : piece.data(), piece.size(), &status);
        requireSuccess(status, "utext_openUTF8");
    }

    Utf8Text(const Utf8Text&) = delete;
    Utf8Text& operator=(const Utf8Text&) = delete;

    ~Utf8Text() { utext_close(&text_); }

    [[nodiscard]] UText* get() noexcept { return &text_; }

  private:
    UText text_ = UTEXT_INITIALIZER;
};

} // namespace corvane::text
