#include "screens/library/detail/tile_picture.h"

#include <QPainter>
#include <QQuickWindow>
#include <QSGImageNode>

namespace corvane {

TilePicture::TilePicture(QQuickItem* parent)
  : QQuickItem(parent) {
    setFlag(ItemHasContents);
    connect(this, &TilePicture::inputChanged, this, [this] {
        isStale_ = true;
        update();
    });
}

void TilePicture::setImage(const QVariant& image) {
    image_ = image.value<QImage>();
    Q_EMIT inputChanged();
}

QImage TilePicture::drawing(qreal ratio) const {
    const QSize size = (QSizeF(width(), height()) * ratio).toSize();
    QImage drawn(size, QImage::Format_ARGB32_Premultiplied);
    drawn.fill(Qt::transparent);
    const QImage whole = image_.scaled(size, Qt::KeepAspectRatioByExpanding, Qt::SmoothTransformation);
    QBrush brush(whole);
    brush.setTransform(QTransform::fromTranslate((size.width() - whole.width()) / 2.0,
                                                 (size.height() - whole.height()) / 2.0));
    QPainter painter(&drawn);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(brush);
    painter.drawRoundedRect(QRectF(QPointF(), size), radius_ * ratio, radius_ * ratio);
    return drawn;
}

QSGNode* TilePicture::updatePaintNode(QSGNode* old, UpdatePaintNodeData* /*data*/) {
    auto* node = static_cast<QSGImageNode*>(old);
    if (isStale_ || node == nullptr) {
        delete node;
        node = nullptr;
        isStale_ = false;
        if (image_.isNull() || width() < 1 || height() < 1) return nullptr;
        node = window()->createImageNode();
        node->setTexture(window()->createTextureFromImage(drawing(window()->effectiveDevicePixelRatio())));
        node->setOwnsTexture(true);
    }
    node->setRect(boundingRect());
    return node;
}

void TilePicture::itemChange(ItemChange change, const ItemChangeData& value) {
    isStale_ = isStale_ || change == ItemDevicePixelRatioHasChanged || change == ItemSceneChange;
    QQuickItem::itemChange(change, value);
}

} // namespace corvane
