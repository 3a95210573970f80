#include "screens/texts/text_marks.h"

namespace corvane {

void TextMarks::setArea(QQuickTextDocument* area) {
    if (area_ == area) return;
    area_ = area;
    QSyntaxHighlighter::setDocument(area == nullptr ? nullptr : area->textDocument());
    Q_EMIT areaChanged();
}

void TextMarks::setQuery(const QString& query) {
    if (query_ == query) return;
    query_ = query;
    rehighlight();
    Q_EMIT queryChanged();
}

void TextMarks::setColor(const QColor& color) {
    if (color_ == color) return;
    color_ = color;
    rehighlight();
    Q_EMIT colorChanged();
}

void TextMarks::highlightBlock(const QString& text) {
    if (query_.isEmpty()) return;
    QTextCharFormat mark;
    mark.setBackground(color_);
    for (qsizetype at = text.indexOf(query_, 0, Qt::CaseInsensitive); at >= 0;
         at = text.indexOf(query_, at + query_.size(), Qt::CaseInsensitive))
        setFormat(static_cast<int>(at), static_cast<int>(query_.size()), mark);
}

} // namespace corvane
