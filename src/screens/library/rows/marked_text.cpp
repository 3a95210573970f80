#include "screens/library/rows/marked_text.h"

#include <QVariantMap>

#include "mime/body/body_snippets.h"
#include "screens/texts/shown_text.h"

namespace corvane::screens {

namespace {

// From here on a place is moved towards the beginning of its row, in bytes.
constexpr std::size_t farPlace = 60;

QVariantMap piece(std::string_view text, bool isMarked) {
    return {{QStringLiteral("text"), wholeText(text)}, {QStringLiteral("marked"), isMarked}};
}

} // namespace

QVariantList markedPieces(std::string_view text, const std::vector<text::ByteRange>& marks) {
    QVariantList pieces;
    std::size_t end = 0;
    const auto addPlain = [&](std::size_t to) {
        if (to > end) pieces.append(piece(text.substr(end, to - end), false));
    };
    for (const text::ByteRange& mark : marks) {
        addPlain(mark.start);
        pieces.append(piece(text.substr(mark.start, mark.length), true));
        end = mark.end();
    }
    addPlain(text.size());
    return pieces;
}

QVariantList markedLine(std::string_view line, std::string_view query) {
    const std::string shown = shownLine(line).toStdString();
    const auto marks = mime::searchHighlights(shown, query);
    if (marks.empty()) return {};
    if (marks.front().start < farPlace) return markedPieces(shown, marks);
    const auto part = mime::snippet(shown, query, {.padding = 8, .maxLength = 200});
    return part ? markedPieces(part->text, part->highlighted) : markedPieces(shown, marks);
}

} // namespace corvane::screens
