// The attachments of the mail that the library shows, as tiles: each is taken out of the mail in the
// background while its tile stands there, and opened by a double click only. Main thread.
#pragma once

#include <cstdint>
#include <expected>
#include <string>
#include <vector>

#include <QAbstractListModel>
#include <QImage>
#include <QTimer>
#include <QtQml/qqmlregistration.h>

#include "model/corvane_view_model.h"

namespace corvane {

class AttachmentTiles : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the library")
    Q_PROPERTY(int count READ count NOTIFY countChanged)
    Q_PROPERTY(int leftOut READ leftOut NOTIFY countChanged)
    Q_PROPERTY(bool saving READ isSaving NOTIFY savingChanged)
    Q_PROPERTY(QString savingText READ savingText NOTIFY savingChanged)
    Q_PROPERTY(QString defaultFolder READ defaultFolder CONSTANT)

  public:
    enum Role {
        NameRole = Qt::UserRole + 1,
        SymbolRole,
        StatusTextRole,
        FailedRole,
        PictureRole,  // null for what is no picture, and as long as it isn't made
        FileTextRole, // its copy for other programs, as "text/uri-list"; empty as long as there is none
    };

    // `model` must outlive it.
    explicit AttachmentTiles(CorvaneViewModel& model, QObject* parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] int count() const { return rowCount(); }

    // Attachments of the mail beyond those that can be laid out.
    [[nodiscard]] int leftOut() const { return static_cast<int>(all_.size() - tiles_.size()); }

    // Null for none. Where `prepares` is set, they are taken out ahead.
    void show(const ArchivedEntry* entry, bool prepares);

    Q_INVOKABLE void open(int row);

    // One into a folder that is there, under a name of its own. Nothing that is there is written over.
    Q_INVOKABLE void save(int row, const QString& folder, const QString& name);

    // All of them, under their names or with numbers behind these.
    Q_INVOKABLE void saveAll(const QString& folder);

    // The name of its file, as every system takes it; empty for a row that isn't there.
    Q_INVOKABLE [[nodiscard]] QString fileName(int row) const;

    Q_INVOKABLE void cancelSaving() { model_.library().attachments.cancelSaving(); }

    [[nodiscard]] bool isSaving() const { return model_.library().attachments.savingProgress().has_value(); }

    // "正在存储 2 / 5"; empty when nothing is being saved.
    [[nodiscard]] QString savingText() const;

    // Where the user keeps what comes from outside.
    [[nodiscard]] QString defaultFolder() const;

  Q_SIGNALS:
    void countChanged();
    void savingChanged();
    // What came of an opening or a saving.
    void noticed(const QString& text);

  private:
    enum class State { idle, preparing, ready, opening, failed };

    struct Tile {
        AttachmentRef attachment;
        State state = State::idle;
        QString failure{};
        QString path{}; // of the prepared file; empty before
        QImage picture{};
    };

    void prepareAll();
    void prepare(int row);
    void handlePrepared(int row, const std::expected<std::string, std::string>& path);
    void setState(int row, State state, const QString& failure = {});
    void handleSavingEnd();

    // False when another mail is shown by now.
    [[nodiscard]] bool isPresent(std::int64_t generation) const { return generation == generation_; }

    CorvaneViewModel& model_;
    std::vector<Tile> tiles_;
    std::vector<AttachmentRef> all_; // those beyond the tiles as well
    std::int64_t generation_ = 0;
    QTimer prepareDelay_;
};

} // namespace corvane
