#include "cli/mails/mail_texts.h"

#include "library/displayable_names.h"
#include "mime/body/body_snippets.h"

namespace corvane::cli {

bool showsSnippet(const ArchivedEmailRecord& record, const std::string& query) {
    std::vector<std::string> names;
    for (const DisplayableName& shown : displayableNames(record.attachmentNames))
        names.push_back(shown.name.str());
    return mime::needsBodySnippet(query, record.subject.view(), record.sender.view(), names);
}

std::optional<std::string> snippetText(const std::string& body, const std::string& query) {
    const auto found = mime::snippet(body, query);
    return found ? std::optional(found->text) : std::nullopt;
}

std::vector<mime::Segment> openSegments(const mime::BodyParts& parts, bool allRecipients) {
    return mime::bodySegments(parts, {.showQuoted = true, .quotedRecipientsExpanded = allRecipients});
}

void addSegments(JsonDocument& document, const std::vector<mime::Segment>& segments) {
    document.objects("segments", segments, [&](const mime::Segment& segment) {
        document.member("style", mime::rawValue(segment.style));
        document.member("text", segment.text);
    });
}

std::string textOf(const std::vector<mime::Segment>& segments) {
    std::string text;
    for (const mime::Segment& segment : segments) text += segment.text;
    return text;
}

} // namespace corvane::cli
