// Gives the lines of a text area their fixed height, which QML can only do for labels. Main thread.
#pragma once

#include <QObject>
#include <QPointer>
#include <QQuickTextDocument>
#include <QtQml/qqmlregistration.h>

namespace corvane {

class TextLines : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QQuickTextDocument* document READ document WRITE setDocument NOTIFY documentChanged)
    // In device-independent pixels.
    Q_PROPERTY(qreal height READ height WRITE setHeight NOTIFY heightChanged)

  public:
    using QObject::QObject;

    [[nodiscard]] QQuickTextDocument* document() const { return document_; }

    [[nodiscard]] qreal height() const { return height_; }

    void setDocument(QQuickTextDocument* document);
    void setHeight(qreal height);

  Q_SIGNALS:
    void documentChanged();
    void heightChanged();

  private:
    void apply();

    QPointer<QQuickTextDocument> document_;
    qreal height_ = 0;
    bool isApplying_ = false;
};

} // namespace corvane
