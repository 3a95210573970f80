#include "screens/texts/text_lines.h"

#include <QTextCursor>
#include <QTextDocument>

namespace corvane {

void TextLines::setDocument(QQuickTextDocument* document) {
    if (document_ == document) return;
    if (document_) document_->textDocument()->disconnect(this);
    document_ = document;
    if (document_) {
        connect(document_->textDocument(), &QTextDocument::contentsChanged, this, &TextLines::apply);
    }
    apply();
    Q_EMIT documentChanged();
}

void TextLines::setHeight(qreal height) {
    if (height_ == height) return;
    height_ = height;
    apply();
    Q_EMIT heightChanged();
}

void TextLines::apply() {
    if (!document_ || height_ <= 0 || isApplying_) return;
    // The format is a change of the contents too.
    isApplying_ = true;
    QTextBlockFormat format;
    format.setLineHeight(height_, QTextBlockFormat::FixedHeight);
    QTextCursor cursor(document_->textDocument());
    cursor.select(QTextCursor::Document);
    cursor.mergeBlockFormat(format);
    isApplying_ = false;
}

} // namespace corvane
