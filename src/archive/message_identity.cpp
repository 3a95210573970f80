#include "archive/message_identity.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

#include "archive/header_summary.h"
#include "mime/header_decoding.h"
#include "mime/mail_date.h"
#include "mime/message_identifiers.h"
#include "records/texts/missing_fields.h"
#include "text/case.h"
#include "text/charsets/charset.h"
#include "text/collation.h"

namespace corvane::archive {

namespace {

// As much as the decoding of a header field looks at.
constexpr std::size_t headerBytes = 65536;
constexpr std::size_t summaryBytes = std::size_t{1} << 20;

template <class Record>
ExpectedMessage expectedOf(const Record& record) {
    ExpectedMessage expected{.messageIdentifier = {}, .subject = record.subject, .date = record.date};
    if (record.messageIdentifier && !record.messageIdentifier->empty()) {
        expected.messageIdentifier = record.messageIdentifier->view();
    }
    return expected;
}

// The header with line ends that the decoding of fields knows.
class Header {
  public:
    explicit Header(std::string_view mail)
      : start_(mail.substr(0, headerBytes)) {
        if (start_.find('\n') != std::string_view::npos || start_.find('\r') == std::string_view::npos)
            return;
        withFeeds_ = start_;
        std::ranges::replace(withFeeds_, '\r', '\n');
        start_ = withFeeds_;
    }

    Header(const Header&) = delete;
    Header& operator=(const Header&) = delete;

    [[nodiscard]] std::optional<std::string> field(std::string_view name) const {
        return mime::decodedHeaderField(name, start_);
    }

  private:
    std::string_view start_;
    std::string withFeeds_;
};

// What is left of a subject when decoders disagree about blanks and normal forms; empty for one that says
// nothing.
std::string comparableSubject(std::string_view subject) {
    if (isMissingSubject(subject)) return {};
    std::string text = text::lowercased(text::canonicallyComposed(text::repairedUtf8(subject)));
    std::erase_if(text, [](char byte) {
        return byte == ' ' || byte == '\t' || byte == '\r' || byte == '\n' || byte == '_';
    });
    return text;
}

// What a mail says of itself.
struct FoundMessage {
    std::optional<std::string> messageIdentifier;
    std::string subject;
    std::optional<Date> date;
};

// As the lists decode it.
FoundMessage listedMessage(std::string_view mail) {
    const Header header(mail);
    FoundMessage found;
    const auto identifier = header.field("message-id");
    if (identifier) found.messageIdentifier = mime::normalizedMessageIdentifier(*identifier);
    found.subject = header.field("subject").value_or("");
    const auto date = header.field("date");
    if (date) found.date = mime::parseMailDate(*date);
    return found;
}

// As a rebuilt index decodes it.
FoundMessage summarizedMessage(std::string_view mail) {
    const auto summary = headerSummary(mail.substr(0, summaryBytes));
    if (!summary) return {};
    FoundMessage found{.messageIdentifier = {}, .subject = summary->subject.str(), .date = summary->date};
    if (summary->messageIdentifier) found.messageIdentifier = summary->messageIdentifier->str();
    return found;
}

bool subjectsDiffer(const ExpectedMessage& expected, const FoundMessage& message) {
    const std::string found = comparableSubject(message.subject);
    const std::string wanted = comparableSubject(expected.subject);
    // A word that is still encoded, or in bytes of an unknown charset, can't be compared.
    if (found.find("=?") != std::string::npos || found.find("\uFFFD") != std::string::npos) return false;
    return !found.empty() && !wanted.empty() && found != wanted;
}

bool datesDiffer(const ExpectedMessage& expected, const FoundMessage& message) {
    if (!message.date || !expected.date) return false;
    const Date earlier = std::min(*message.date, *expected.date);
    return std::max(*message.date, *expected.date) - earlier > std::chrono::days(1);
}

bool contradicts(const ExpectedMessage& expected, const FoundMessage& found) {
    const bool subjectsDo = subjectsDiffer(expected, found);
    if (!found.messageIdentifier || !expected.messageIdentifier)
        return subjectsDo && datesDiffer(expected, found);
    return *found.messageIdentifier != *expected.messageIdentifier &&
           (subjectsDo || datesDiffer(expected, found));
}

} // namespace

ExpectedMessage ExpectedMessage::of(const MailMessageRecord& message) {
    return expectedOf(message);
}

ExpectedMessage ExpectedMessage::of(const ArchivedEmailRecord& record) {
    return expectedOf(record);
}

bool holdsAnotherMessage(const ExpectedMessage& expected, std::string_view mail) {
    return contradicts(expected, listedMessage(mail)) && contradicts(expected, summarizedMessage(mail));
}

} // namespace corvane::archive
