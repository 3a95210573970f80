// What a rebuilt index says of a mail, out of its own header: sound texts, and none that is empty.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "archive/checks/header_summary.h"
#include "fuzz_kit.h"
#include "text/charsets/charset.h"

using namespace corvane;
using fuzz::require;

namespace {

void checkSummary(std::string_view mail) {
    const auto summary = archive::headerSummary(mail);
    if (!summary) return;
    for (const SharedText& text : {summary->subject, summary->sender, summary->recipients})
        require(text::isValidUtf8(text));
    require(!summary->subject.empty() && !summary->sender.empty());
    require(!summary->messageIdentifier || !summary->messageIdentifier->empty());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input = fuzz::textOf(data, size);
    checkSummary(input);
    require(text::isValidUtf8(archive::decodedWords(input)) || !text::isValidUtf8(input));
    archive::shownAddresses(input);
    return 0;
}
