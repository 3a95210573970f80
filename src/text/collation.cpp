#include "text/collation.h"

#include <memory>

#include <unicode/bytestream.h>
#include <unicode/coll.h>
#include <unicode/normalizer2.h>

#include "text/charsets/ascii.h"
#include "text/icu_text.h"

namespace corvane::text {

namespace {

std::unique_ptr<const icu::Collator> makeNaturalCollator() {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::Collator> collator(icu::Collator::createInstance(icu::Locale::getRoot(), status));
    requireSuccess(status, "Collator::createInstance");
    collator->setAttribute(UCOL_NUMERIC_COLLATION, UCOL_ON, status);
    requireSuccess(status, "Collator::setAttribute");
    return collator;
}

} // namespace

int naturalCompare(std::string_view a, std::string_view b) {
    static const std::unique_ptr<const icu::Collator> collator = makeNaturalCollator();
    UErrorCode status = U_ZERO_ERROR;
    const UCollationResult order = collator->compareUTF8(icuPiece(a), icuPiece(b), status);
    requireSuccess(status, "Collator::compareUTF8");
    return order;
}

std::string canonicallyComposed(std::string_view text) {
    if (isAscii(text)) return std::string(text);
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* composer = icu::Normalizer2::getNFCInstance(status);
    requireSuccess(status, "Normalizer2::getNFCInstance");
    std::string composed;
    composed.reserve(text.size());
    icu::StringByteSink<std::string> sink(&composed);
    composer->normalizeUTF8(0, icuPiece(text), sink, nullptr, status);
    requireSuccess(status, "Normalizer2::normalizeUTF8");
    return composed;
}

} // namespace corvane::text
