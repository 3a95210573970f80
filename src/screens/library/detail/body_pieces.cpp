#include "screens/library/detail/body_pieces.h"

#include <utility>

#include "mime/body/body_snippets.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

// Laid out in less time than a glance takes.
constexpr qsizetype mostUnits = 120'000;

std::vector<BodyPiece::Mark> marksOf(const QString& text, const std::string& query) {
    std::vector<BodyPiece::Mark> marks;
    if (query.empty()) return marks;
    const std::string bytes = text.toStdString();
    std::size_t byte = 0;
    int unit = 0;
    const auto advanceTo = [&](std::size_t to) {
        unit += static_cast<int>(
            QString::fromUtf8(bytes.data() + byte, static_cast<qsizetype>(to - byte)).size());
        byte = to;
        return unit;
    };
    for (const text::ByteRange& range : mime::searchHighlights(bytes, query)) {
        const int start = advanceTo(range.start);
        marks.push_back({start, advanceTo(range.end()) - start});
    }
    return marks;
}

bool isSeparator(const mime::Segment& segment) {
    return segment.text.starts_with("\n\n─");
}

} // namespace

ShownBody shownBody(BodyToShow body) {
    ShownBody shown;
    qsizetype room = mostUnits;
    for (const mime::Segment& segment : mime::bodySegments(body.parts, body.shown)) {
        if (segment.text == "\n\n") continue; // pieces stand apart by themselves
        if (room <= 0) {
            shown.isCut = true;
            break;
        }
        BodyPiece piece{screens::shownText(segment.text, room), segment.style, isSeparator(segment), {}};
        if (piece.isSeparator) piece.text = piece.text.trimmed();
        shown.isCut = shown.isCut || piece.text.size() > room;
        room -= piece.text.size();
        if (!piece.isSeparator) piece.marks = marksOf(piece.text, body.query);
        if (!piece.text.isEmpty()) shown.pieces.push_back(std::move(piece));
    }
    shown.parts = std::move(body.parts);
    return shown;
}

} // namespace corvane
