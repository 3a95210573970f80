// A small picture that fills a square with round corners; what hangs over is cut away evenly. Main thread.
#pragma once

#include <QImage>
#include <QQuickItem>
#include <QVariant>
#include <QtQml/qqmlregistration.h>

namespace corvane {

class TilePicture : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    // A QImage.
    Q_PROPERTY(QVariant image READ image WRITE setImage NOTIFY inputChanged)
    Q_PROPERTY(bool filled READ isFilled NOTIFY inputChanged)
    Q_PROPERTY(qreal radius MEMBER radius_ NOTIFY inputChanged)

  public:
    explicit TilePicture(QQuickItem* parent = nullptr);

    [[nodiscard]] QVariant image() const { return image_; }

    [[nodiscard]] bool isFilled() const { return !image_.isNull(); }

    void setImage(const QVariant& image);

  Q_SIGNALS:
    void inputChanged();

  protected:
    QSGNode* updatePaintNode(QSGNode* old, UpdatePaintNodeData* data) override;
    void itemChange(ItemChange change, const ItemChangeData& value) override;

  private:
    [[nodiscard]] QImage drawing(qreal ratio) const;

    QImage image_;
    qreal radius_ = 0;
    bool isStale_ = true;
};

} // namespace corvane
