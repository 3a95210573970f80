#include "screens/library/detail/body_layout.h"

#include <QTextDocument>

namespace corvane {

namespace {

using Style = mime::SegmentStyle;

constexpr qreal quoteIndent = 14;
constexpr qreal spaceAboveSeparator = 16;

bool isQuoted(Style style) {
    return style == Style::quoted || style == Style::quotedSignature;
}

} // namespace

BodyLayout::BodyLayout(QObject* parent)
  : QObject(parent) {
    // Several of them change in one step, such as all colours.
    connect(this, &BodyLayout::inputChanged, this, &BodyLayout::layOut, Qt::QueuedConnection);
}

void BodyLayout::setBody(ArchivedBody* body) {
    if (body_ == body) return;
    if (body_) body_->disconnect(this);
    body_ = body;
    if (body_) connect(body_, &ArchivedBody::piecesChanged, this, &BodyLayout::layOut);
    Q_EMIT inputChanged();
}

void BodyLayout::layOut() {
    if (!document_ || !body_) return;
    QTextDocument* document = document_->textDocument();
    document->setUndoRedoEnabled(false);
    QTextCursor cursor(document);
    cursor.beginEditBlock();
    cursor.select(QTextCursor::Document);
    cursor.removeSelectedText();
    firstMark_ = -1;
    for (const BodyPiece& piece : body_->pieces()) insert(cursor, piece);
    cursor.endEditBlock();
    Q_EMIT laidOut();
}

void BodyLayout::insert(QTextCursor& cursor, const BodyPiece& piece) {
    QTextBlockFormat block;
    block.setLineHeight(lineHeight_, QTextBlockFormat::FixedHeight);
    block.setLeftMargin(isQuoted(piece.style) ? quoteIndent : 0);
    if (piece.isSeparator) block.setTopMargin(spaceAboveSeparator);
    QTextCharFormat format;
    QFont font;
    font.setPixelSize(piece.isSeparator || piece.style == Style::quotedHeader ? noteSize_ : bodySize_);
    format.setFont(font, QTextCharFormat::FontPropertiesSpecifiedOnly);
    const bool isQuiet = piece.style == Style::signature || piece.style == Style::quotedSignature;
    const bool isFaint = piece.isSeparator || piece.style == Style::quotedHeader;
    format.setForeground(isFaint ? faintColor_ : isQuiet ? quietColor_ : bodyColor_);
    if (cursor.document()->isEmpty())
        cursor.setBlockFormat(block);
    else
        cursor.insertBlock(block);
    cursor.setBlockCharFormat(format);
    cursor.insertText(piece.text, format);
    mark(cursor, piece);
}

void BodyLayout::mark(const QTextCursor& behind, const BodyPiece& piece) {
    const int start = behind.position() - static_cast<int>(piece.text.size());
    QTextCharFormat marked;
    marked.setBackground(markColor_);
    for (const BodyPiece::Mark& each : piece.marks) {
        QTextCursor cursor(behind.document());
        cursor.setPosition(start + each.start);
        cursor.setPosition(start + each.start + each.length, QTextCursor::KeepAnchor);
        cursor.mergeCharFormat(marked);
        if (firstMark_ < 0) firstMark_ = start + each.start;
    }
}

} // namespace corvane
