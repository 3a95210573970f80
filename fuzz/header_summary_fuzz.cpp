// What a rebuilt index says of a mail, out of its own header: sound texts, none that is empty, and nothing by
// which the mail would be taken for another one.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "archive/header_summary.h"
#include "archive/message_identity.h"
#include "fuzz_kit.h"
#include "records/archived/archive_records.h"
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
    ArchivedEmailRecord record;
    record.messageIdentifier = summary->messageIdentifier;
    record.subject = summary->subject;
    record.date = summary->date;
    require(!archive::holdsAnotherMessage(archive::ExpectedMessage::of(record), mail));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input = fuzz::textOf(data, size);
    checkSummary(input);
    require(text::isValidUtf8(archive::decodedWords(input)) || !text::isValidUtf8(input));
    archive::shownAddresses(input);
    return 0;
}
