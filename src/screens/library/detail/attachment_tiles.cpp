#include "screens/library/detail/attachment_tiles.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include <QPointer>
#include <QStandardPaths>
#include <QUrl>

#include "archive/portable_names.h"
#include "platform/paths.h"
#include "screens/texts/attachment_symbol.h"
#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

using namespace std::chrono_literals;

// Mail that people write has fewer.
constexpr std::size_t mostTiles = 40;

// Whoever goes through the list looks at no attachments.
constexpr auto lookPause = 400ms;

// In pixels: the short side of most pictures still fills the tile's box on a dense screen.
constexpr int pictureEdge = 192;

QImage imageOf(const Thumbnail& made) {
    const auto* const pixels = reinterpret_cast<const uchar*>(made.pixels.data());
    return QImage(pixels, made.width, made.height, 4 * made.width, QImage::Format_RGBA8888_Premultiplied)
        .copy();
}

} // namespace

AttachmentTiles::AttachmentTiles(CorvaneViewModel& model, QObject* parent)
  : QAbstractListModel(parent)
  , model_(model) {
    prepareDelay_.setSingleShot(true);
    prepareDelay_.setInterval(lookPause);
    connect(&prepareDelay_, &QTimer::timeout, this, &AttachmentTiles::prepareAll);
    connect(&model.library().attachments, &AttachmentFlow::savingChanged, this,
            &AttachmentTiles::savingChanged);
    connect(&model.library().attachments, &AttachmentFlow::savingEnded, this,
            &AttachmentTiles::handleSavingEnd);
}

int AttachmentTiles::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(tiles_.size());
}

QVariant AttachmentTiles::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount()) return {};
    const Tile& tile = tiles_[static_cast<std::size_t>(index.row())];
    switch (role) {
    case NameRole:
        return screens::shownLine(tile.attachment.name);
    case SymbolRole:
        return screens::wholeText(attachmentSymbol(tile.attachment.name));
    case FailedRole:
        return tile.state == State::failed;
    case PictureRole:
        return tile.picture;
    case FileTextRole:
        return tile.path.isEmpty()
                   ? QString()
                   : QString::fromLatin1(QUrl::fromLocalFile(tile.path).toEncoded()) + QStringLiteral("\r\n");
    case StatusTextRole:
        return tile.state == State::preparing ? QStringLiteral("正在准备附件…")
               : tile.state == State::opening ? QStringLiteral("正在打开…")
               : tile.state == State::failed  ? tile.failure
                                              : QStringLiteral("双击打开");
    default:
        return {};
    }
}

QHash<int, QByteArray> AttachmentTiles::roleNames() const {
    return {{NameRole, "name"},     {SymbolRole, "symbol"},   {StatusTextRole, "statusText"},
            {FailedRole, "failed"}, {PictureRole, "picture"}, {FileTextRole, "fileText"}};
}

void AttachmentTiles::show(const ArchivedEntry* entry, bool prepares) {
    beginResetModel();
    ++generation_;
    tiles_.clear();
    all_ = entry == nullptr ? std::vector<AttachmentRef>() : displayableAttachments(*entry);
    for (std::size_t at = 0; at < std::min(all_.size(), mostTiles); ++at) tiles_.push_back({all_[at]});
    endResetModel();
    Q_EMIT countChanged();
    prepareDelay_.stop();
    if (prepares && !tiles_.empty()) prepareDelay_.start();
}

void AttachmentTiles::prepareAll() {
    for (int row = 0; row < rowCount(); ++row) prepare(row);
}

void AttachmentTiles::prepare(int row) {
    setState(row, State::preparing);
    model_.library().attachments.prepareAttachment(
        tiles_[static_cast<std::size_t>(row)].attachment,
        [self = QPointer(this), row, generation = generation_](const auto& path) {
            if (self && self->isPresent(generation)) self->handlePrepared(row, path);
        });
}

void AttachmentTiles::handlePrepared(int row, const std::expected<std::string, std::string>& path) {
    Tile& tile = tiles_[static_cast<std::size_t>(row)];
    if (path) {
        tile.path = QString::fromStdString(*path);
        model_.library().attachments.makeThumbnail(
            *path, pictureEdge,
            [self = QPointer(this), row, generation = generation_](const Thumbnail& made) {
                if (!self || !self->isPresent(generation)) return;
                self->tiles_[static_cast<std::size_t>(row)].picture = imageOf(made);
                Q_EMIT self->dataChanged(self->index(row), self->index(row), {PictureRole});
            });
    }
    if (tile.state == State::preparing)
        setState(row, path ? State::ready : State::failed,
                 path ? QString() : screens::shownLine(path.error()));
}

void AttachmentTiles::open(int row) {
    if (row < 0 || row >= rowCount() || tiles_[static_cast<std::size_t>(row)].state == State::opening) return;
    setState(row, State::opening);
    model_.library().attachments.openAttachment(
        tiles_[static_cast<std::size_t>(row)].attachment,
        [self = QPointer(this), row, generation = generation_](const auto& note) {
            if (!self || !self->isPresent(generation)) return;
            self->setState(row, note ? State::ready : State::failed,
                           note ? QString() : screens::shownLine(note.error()));
            if (note && !note->empty()) Q_EMIT self->noticed(screens::wholeText(*note));
        });
}

void AttachmentTiles::setState(int row, State state, const QString& failure) {
    Tile& tile = tiles_[static_cast<std::size_t>(row)];
    tile.state = state;
    tile.failure = failure;
    Q_EMIT dataChanged(index(row), index(row), {StatusTextRole, FailedRole, FileTextRole});
}

QString AttachmentTiles::fileName(int row) const {
    if (row < 0 || row >= rowCount()) return {};
    return screens::wholeText(
        archive::portableFileName(tiles_[static_cast<std::size_t>(row)].attachment.name));
}

void AttachmentTiles::save(int row, const QString& folder, const QString& name) {
    if (row < 0 || row >= rowCount()) return;
    const std::string fileName = archive::portableFileName(name.toStdString());
    model_.library().attachments.saveAttachment(
        tiles_[static_cast<std::size_t>(row)].attachment, platform::joinPath(folder.toStdString(), fileName),
        [self = QPointer(this)](const auto& saved) {
            if (self)
                Q_EMIT self->noticed(saved ? QStringLiteral("已存储到 ") + screens::shownLine(saved->path)
                                           : screens::shownLine(saved.error()));
        });
}

void AttachmentTiles::saveAll(const QString& folder) {
    if (!all_.empty() && !isSaving())
        model_.library().attachments.saveAttachments(all_, folder.toStdString());
}

void AttachmentTiles::handleSavingEnd() {
    const auto& outcome = model_.library().attachments.savingOutcome();
    if (!outcome) return;
    if (!*outcome) {
        Q_EMIT noticed(screens::shownLine(outcome->error()));
        return;
    }
    const AttachmentSaving& saving = **outcome;
    QString text = QStringLiteral("已存储 %1 个附件").arg(saving.saved.size());
    if (saving.wasCancelled) text += QStringLiteral("，其余已取消");
    if (!saving.failures.empty())
        text += QStringLiteral("，%1 个没有存储：%2")
                    .arg(saving.failures.size())
                    .arg(screens::shownLine(saving.failures.front().reason));
    Q_EMIT noticed(text);
}

QString AttachmentTiles::savingText() const {
    const auto& progress = model_.library().attachments.savingProgress();
    if (!progress) return {};
    return QStringLiteral("正在存储 %1 / %2")
        .arg(screens::shownCount(progress->done), screens::shownCount(progress->total));
}

QString AttachmentTiles::defaultFolder() const {
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::DownloadLocation);
    return folder.isEmpty() ? screens::wholeText(model_.context().platform.realUserHomeDirectory()) : folder;
}

} // namespace corvane
