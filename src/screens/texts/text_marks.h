// Marks a searched text wherever it stands in a text area, in either case. The text itself isn't changed.
// Main thread.
#pragma once

#include <QColor>
#include <QPointer>
#include <QQuickTextDocument>
#include <QSyntaxHighlighter>
#include <QtQml/qqmlregistration.h>

namespace corvane {

class TextMarks : public QSyntaxHighlighter {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QQuickTextDocument* area READ area WRITE setArea NOTIFY areaChanged)
    // Without blanks around it; empty marks nothing.
    Q_PROPERTY(QString query READ query WRITE setQuery NOTIFY queryChanged)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)

  public:
    explicit TextMarks(QObject* parent = nullptr)
      : QSyntaxHighlighter(parent) {}

    [[nodiscard]] QQuickTextDocument* area() const { return area_; }

    [[nodiscard]] const QString& query() const { return query_; }

    [[nodiscard]] const QColor& color() const { return color_; }

    void setArea(QQuickTextDocument* area);
    void setQuery(const QString& query);
    void setColor(const QColor& color);

  Q_SIGNALS:
    void areaChanged();
    void queryChanged();
    void colorChanged();

  protected:
    void highlightBlock(const QString& text) override;

  private:
    QPointer<QQuickTextDocument> area_;
    QString query_;
    QColor color_;
};

} // namespace corvane
