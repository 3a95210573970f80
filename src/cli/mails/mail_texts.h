// What commands show of a mail's text, as the library's rows and reading pane do.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/console/output.h"
#include "mime/body/body_segments.h"
#include "mime/body/body_split.h"
#include "records/archived/archive_records.h"

namespace corvane::cli {

// Whether a row shows the place in the text where the query was found: not when its subject, its sender or an
// attachment's name shows it already.
bool showsSnippet(const ArchivedEmailRecord& record, const std::string& query);

// The line around the first place of the query; absent for a blank query, and where the text doesn't hold it.
std::optional<std::string> snippetText(const std::string& body, const std::string& query);

// The pieces with the quoted history open.
std::vector<mime::Segment> openSegments(const mime::BodyParts& parts, bool allRecipients);

// The member "segments".
void addSegments(JsonDocument& document, const std::vector<mime::Segment>& segments);

// The text of the pieces, one behind the other.
std::string textOf(const std::vector<mime::Segment>& segments);

} // namespace corvane::cli
