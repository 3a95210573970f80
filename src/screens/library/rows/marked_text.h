// A text in pieces, of which some are marked as places of a search, as QML shows it.
#pragma once

#include <string_view>
#include <vector>

#include <QVariantList>

#include "text/case_search.h"

namespace corvane::screens {

// Maps with `text` and `marked`; one piece without a mark, none for an empty text. Ranges are in bytes of the
// text, in order.
QVariantList markedPieces(std::string_view text, const std::vector<text::ByteRange>& marks);

// A line with the places of the query marked, cut at its beginning where the first one would not be seen in
// a row; empty where it holds none.
QVariantList markedLine(std::string_view line, std::string_view query);

} // namespace corvane::screens
