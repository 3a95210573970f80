#include "screens/controls/theme/symbol.h"

#include <cmath>
#include <utility>

#include <QBuffer>
#include <QFile>
#include <QHash>
#include <QImageReader>
#include <QQuickWindow>
#include <QSGImageNode>

namespace corvane {

namespace {

QString iconPath(const QString& icon) {
    return QStringLiteral(":/qt/qml/Corvane/icons/%1.svg").arg(icon);
}

const QHash<QString, QString>& systemNames() {
    static const QHash<QString, QString> names = [] {
        const std::pair<const char*, const char*> table[] = {
            {"icloud", "cloud"},
            {"icloud.fill", "cloud"},
            {"cloud.fill", "cloud"},
            {"icloud.and.arrow.down", "cloud-download"},
            {"externaldrive", "hard-drive"},
            {"externaldrive.fill", "hard-drive"},
            {"externaldrive.badge.questionmark", "unplug"},
            {"checkmark.shield", "shield-check"},
            {"checkmark.shield.fill", "shield-check"},
            {"exclamationmark.triangle.fill", "triangle-alert"},
            {"checkmark.circle", "circle-check"},
            {"questionmark.circle", "circle-question-mark"},
            {"checkmark.square.fill", "square-check"},
            {"arrow.up.forward.app", "square-arrow-out-up-right"},
            {"doc.text.magnifyingglass", "file-search"},
            {"text.magnifyingglass", "text-search"},
            {"doc", "file"},
            {"doc.richtext", "file-type"},
            {"doc.text", "file-text"},
            {"doc.plaintext", "notepad-text"},
            {"doc.zipper", "file-archive"},
            {"tablecells", "sheet"},
            {"rectangle.on.rectangle", "presentation"},
            {"photo", "image"},
            {"waveform", "audio-lines"},
            {"chevron.left.forwardslash.chevron.right", "code-xml"},
            {"envelope", "mail"},
            {"shippingbox", "package"},
        };
        QHash<QString, QString> result;
        for (const auto& [system, icon] : table)
            result.insert(QString::fromLatin1(system), QString::fromLatin1(icon));
        return result;
    }();
    return names;
}

qreal strokeFor(qreal size) {
    if (size >= 40) return 1.25;
    return size >= 32 ? 1.4 : 1.75;
}

QImage draw(const QString& icon, const QColor& color, int pixels, qreal stroke) {
    QFile file(iconPath(icon));
    if (!file.open(QIODevice::ReadOnly)) return {};
    QByteArray svg = file.readAll();
    svg.replace("currentColor", color.name().toLatin1());
    svg.replace("stroke-width=\"1.75\"", "stroke-width=\"" + QByteArray::number(stroke) + "\"");
    QBuffer buffer(&svg);
    QImageReader reader(&buffer, "svg");
    reader.setScaledSize(QSize(pixels, pixels));
    return reader.read();
}

} // namespace

Symbol::Symbol(QQuickItem* parent)
  : QQuickItem(parent) {
    setFlag(ItemHasContents);
    setImplicitSize(size_, size_);
}

void Symbol::setName(const QString& name) {
    if (name == name_) return;
    name_ = name;
    redraw();
    Q_EMIT nameChanged();
}

void Symbol::setSize(qreal size) {
    if (size == size_) return;
    size_ = size;
    setImplicitSize(size, size);
    redraw();
    Q_EMIT sizeChanged();
}

void Symbol::setColor(const QColor& color) {
    if (color == color_) return;
    color_ = color;
    redraw();
    Q_EMIT colorChanged();
}

void Symbol::setStroke(qreal stroke) {
    if (stroke == stroke_) return;
    stroke_ = stroke;
    redraw();
    Q_EMIT strokeChanged();
}

QString Symbol::iconFor(const QString& name) {
    const QString icon = systemNames().value(name, name);
    return !icon.contains(u'/') && QFile::exists(iconPath(icon)) ? icon : QStringLiteral("file");
}

QImage Symbol::drawing(const QString& icon, const QColor& color, int pixels, qreal stroke) {
    static QHash<QString, QImage> kept;
    const QString key = QStringLiteral("%1|%2|%3|%4").arg(icon, color.name()).arg(pixels).arg(stroke);
    const auto found = kept.constFind(key);
    if (found != kept.constEnd()) return *found;
    return *kept.insert(key, draw(icon, color, pixels, stroke));
}

QSGNode* Symbol::updatePaintNode(QSGNode* old, UpdatePaintNodeData* /*data*/) {
    auto* node = static_cast<QSGImageNode*>(old);
    if (stale_ || node == nullptr) {
        delete node;
        node = nullptr;
        stale_ = false;
        if (name_.isEmpty()) return nullptr;
        const qreal ratio = window()->effectiveDevicePixelRatio();
        const QImage image = drawing(iconFor(name_), color_, static_cast<int>(std::lround(size_ * ratio)),
                                     stroke_ > 0 ? stroke_ : strokeFor(size_));
        if (image.isNull()) return nullptr;
        node = window()->createImageNode();
        node->setTexture(window()->createTextureFromImage(image));
        node->setOwnsTexture(true);
        node->setFiltering(QSGTexture::Linear);
    }
    node->setRect(QRectF((width() - size_) / 2, (height() - size_) / 2, size_, size_));
    return node;
}

void Symbol::itemChange(ItemChange change, const ItemChangeData& value) {
    if (change == ItemDevicePixelRatioHasChanged || change == ItemSceneChange) redraw();
    QQuickItem::itemChange(change, value);
}

void Symbol::redraw() {
    stale_ = true;
    update();
}

} // namespace corvane
