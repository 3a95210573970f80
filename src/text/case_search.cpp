#include "text/case_search.h"

#include <cstdint>
#include <string>

#include <string.h>
#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/edits.h>

#include "text/case.h"
#include "text/charsets/ascii.h"
#include "text/charsets/utf8_step.h"
#include "text/icu_text.h"

namespace corvane::text {

namespace {

// A text in folded case that knows where its characters came from. Asked for places in rising order.
class FoldedText {
  public:
    explicit FoldedText(std::string_view text)
      : isAscii_(isAscii(text)) {
        if (isAscii_) {
            folded_ = asciiLowercased(text);
            return;
        }
        folded_.reserve(text.size());
        icu::StringByteSink<std::string> sink(&folded_);
        UErrorCode status = U_ZERO_ERROR;
        icu::CaseMap::utf8Fold(U_FOLD_CASE_DEFAULT, icuPiece(text), sink, &edits_, status);
        requireSuccess(status, "CaseMap::utf8Fold");
        places_ = edits_.getFineIterator();
    }

    [[nodiscard]] std::string_view view() const { return folded_; }

    // The place in the original of one in the folded text; nullopt within what one character became.
    std::optional<std::size_t> original(std::size_t folded) {
        if (isAscii_) return folded;
        const auto place = static_cast<std::int32_t>(folded);
        UErrorCode status = U_ZERO_ERROR;
        // False at the end of the text, where the iterator stands behind its last edit.
        if (!places_.findDestinationIndex(place, status)) return end();
        requireSuccess(status, "Edits::Iterator::findDestinationIndex");
        const std::int32_t within = place - places_.destinationIndex();
        if (within > 0 && places_.hasChange()) return std::nullopt;
        return static_cast<std::size_t>(places_.sourceIndex() + within);
    }

  private:
    [[nodiscard]] std::size_t end() const {
        return static_cast<std::size_t>(static_cast<std::int64_t>(folded_.size()) - edits_.lengthDelta());
    }

    bool isAscii_;
    std::string folded_;
    icu::Edits edits_;
    icu::Edits::Iterator places_;
};

std::vector<ByteRange> findRanges(std::string_view text, std::string_view part, std::size_t limit) {
    std::vector<ByteRange> ranges;
    if (part.empty() || text.empty()) return ranges;
    FoldedText folded(text);
    const std::string wanted(FoldedText(part).view());
    const std::string_view all = folded.view();
    std::size_t from = 0;
    while (ranges.size() < limit) {
        // Two-way search: std::string::find takes quadratic time on repetitive text.
        const void* found = memmem(all.data() + from, all.size() - from, wanted.data(), wanted.size());
        if (found == nullptr) break;
        const auto place = static_cast<std::size_t>(static_cast<const char*>(found) - all.data());
        const auto start = folded.original(place);
        const auto end = folded.original(place + wanted.size());
        if (start && end) ranges.push_back({*start, *end - *start});
        from = place + (start && end ? wanted.size() : characterLength(all[place]));
    }
    return ranges;
}

} // namespace

std::optional<ByteRange> firstRangeIgnoringCase(std::string_view text, std::string_view part) {
    const auto ranges = findRanges(text, part, 1);
    return ranges.empty() ? std::nullopt : std::optional(ranges.front());
}

std::vector<ByteRange> rangesIgnoringCase(std::string_view text, std::string_view part) {
    return findRanges(text, part, std::string_view::npos);
}

} // namespace corvane::text
