// Lays the pieces of a mail's text out in the document of a text area: fonts, colours, indents, marks. Texts
// go in as plain characters. Main thread.
#pragma once

#include <vector>

#include <QColor>
#include <QObject>
#include <QPointer>
#include <QQuickTextDocument>
#include <QTextCursor>
#include <QtQml/qqmlregistration.h>

#include "screens/library/detail/archived_body.h"

namespace corvane {

class BodyLayout : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QQuickTextDocument* document MEMBER document_ NOTIFY inputChanged)
    Q_PROPERTY(corvane::ArchivedBody* body READ body WRITE setBody NOTIFY inputChanged)
    Q_PROPERTY(qreal lineHeight MEMBER lineHeight_ NOTIFY inputChanged)
    Q_PROPERTY(int bodySize MEMBER bodySize_ NOTIFY inputChanged)
    Q_PROPERTY(int noteSize MEMBER noteSize_ NOTIFY inputChanged)
    Q_PROPERTY(QColor bodyColor MEMBER bodyColor_ NOTIFY inputChanged)
    Q_PROPERTY(QColor quietColor MEMBER quietColor_ NOTIFY inputChanged)
    Q_PROPERTY(QColor faintColor MEMBER faintColor_ NOTIFY inputChanged)
    Q_PROPERTY(QColor markColor MEMBER markColor_ NOTIFY inputChanged)
    // The place of the first mark in the document; -1 without one.
    Q_PROPERTY(int firstMark READ firstMark NOTIFY laidOut)

  public:
    explicit BodyLayout(QObject* parent = nullptr);

    [[nodiscard]] ArchivedBody* body() const { return body_; }

    void setBody(ArchivedBody* body);

    [[nodiscard]] int firstMark() const { return firstMark_; }

  Q_SIGNALS:
    void inputChanged();
    void laidOut();

  private:
    void layOut();
    void insert(QTextCursor& cursor, const BodyPiece& piece);
    void mark(const QTextCursor& behind, const BodyPiece& piece);

    QPointer<QQuickTextDocument> document_;
    QPointer<ArchivedBody> body_;
    qreal lineHeight_ = 22;
    int bodySize_ = 13;
    int noteSize_ = 11;
    QColor bodyColor_;
    QColor quietColor_;
    QColor faintColor_;
    QColor markColor_;
    int firstMark_ = -1;
};

} // namespace corvane
