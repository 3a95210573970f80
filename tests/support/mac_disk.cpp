#include "support/mac_disk.h"

#include <string_view>

#include <unicode/bytestream.h>
#include <unicode/normalizer2.h>

#include "text/case.h"

namespace corvane::testing {

namespace {

std::string decomposed(std::string_view name) {
    UErrorCode status = U_ZERO_ERROR;
    std::string result;
    icu::StringByteSink<std::string> sink(&result);
    icu::Normalizer2::getNFDInstance(status)->normalizeUTF8(
        0, {name.data(), static_cast<int32_t>(name.size())}, sink, nullptr, status);
    return result;
}

} // namespace

std::string MacDisk::entryOf(int folder, const std::string& name) {
    std::string found = decomposed(name);
    const std::string wanted = text::lowercased(found);
    list(folder, [&](std::string_view entry, unsigned char) {
        if (text::lowercased(decomposed(entry)) == wanted) found = entry;
    });
    return found;
}

} // namespace corvane::testing
