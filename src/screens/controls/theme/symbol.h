// One icon of the window, drawn from its SVG in one colour at the pixel size it is shown at. Main thread.
//
// Drawings are kept for the whole program run, so a list that scrolls draws none.
#pragma once

#include <QColor>
#include <QImage>
#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

namespace corvane {

class Symbol : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    // Name of an icon ("mail"), or of a symbol of macOS ("envelope"). An unknown name shows a file.
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged)
    // Edge in device-independent pixels.
    Q_PROPERTY(qreal size READ size WRITE setSize NOTIFY sizeChanged)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)
    // Width of the lines on the grid of 24; 0 for what fits the size.
    Q_PROPERTY(qreal stroke READ stroke WRITE setStroke NOTIFY strokeChanged)

  public:
    explicit Symbol(QQuickItem* parent = nullptr);

    [[nodiscard]] const QString& name() const { return name_; }

    [[nodiscard]] qreal size() const { return size_; }

    [[nodiscard]] const QColor& color() const { return color_; }

    [[nodiscard]] qreal stroke() const { return stroke_; }

    void setName(const QString& name);
    void setSize(qreal size);
    void setColor(const QColor& color);
    void setStroke(qreal stroke);

    // The icon behind a name, as its file is called.
    static QString iconFor(const QString& name);

    // A drawing of `pixels` by `pixels`; a null image when the system has no reader for SVG.
    static QImage drawing(const QString& icon, const QColor& color, int pixels, qreal stroke);

  Q_SIGNALS:
    void nameChanged();
    void sizeChanged();
    void colorChanged();
    void strokeChanged();

  protected:
    QSGNode* updatePaintNode(QSGNode* old, UpdatePaintNodeData* data) override;
    void itemChange(ItemChange change, const ItemChangeData& value) override;

  private:
    void redraw();

    QString name_;
    qreal size_ = 16;
    QColor color_ = Qt::black;
    qreal stroke_ = 0;
    bool stale_ = true;
};

} // namespace corvane
