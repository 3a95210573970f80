#include "screens/library/rows/marked_text.h"

#include <QVariantMap>

#include "mime/body/body_snippets.h"
#include "screens/texts/shown_text.h"

namespace corvane::screens {

namespace {

// What fits beside the date of a row, in letters; a Chinese character is as wide as two.
constexpr std::size_t roomOfRow = 28;

std::size_t lettersOf(std::string_view text) {
    std::size_t letters = 0;
    for (const char byte : text) {
        const auto lead = static_cast<unsigned char>(byte);
        if (lead < 0x80 || lead >= 0xC0) letters += lead >= 0xE0 ? 2 : 1;
    }
    return letters;
}

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
    if (lettersOf(std::string_view(shown).substr(0, marks.front().end())) <= roomOfRow)
        return markedPieces(shown, marks);
    const auto part = mime::snippet(shown, query, {.padding = 8, .maxLength = 200});
    return part ? markedPieces(part->text, part->highlighted) : markedPieces(shown, marks);
}

} // namespace corvane::screens
