// The folder picker's content: one folder with the folders in it, the places to begin at, what the present
// choice would come to, and what went wrong last. A folder that can't be opened leaves the list as it is.
// Main thread; the disk is asked in the background, since a cloud folder may hang.
#pragma once

#include <functional>
#include <stop_token>
#include <string>
#include <vector>

#include <QAbstractListModel>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

#include "locations/places/folder_listing.h"
#include "locations/places/place_looks.h"
#include "model/corvane_view_model.h"
#include "screens/archive/places/folder_choice.h"
#include "screens/archive/places/folder_texts.h"

namespace corvane {

class FolderPicker : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("part of the archive sheet")
    Q_PROPERTY(QString pathText READ pathText NOTIFY listed)
    Q_PROPERTY(bool canGoUp READ canGoUp NOTIFY listed)
    Q_PROPERTY(bool busy READ isBusy NOTIFY busyChanged)
    Q_PROPERTY(QString errorText READ errorText NOTIFY errorChanged)
    Q_PROPERTY(QVariantList places READ places NOTIFY placesChanged)
    Q_PROPERTY(corvane::FolderChoice choice READ choice NOTIFY choiceChanged)

  public:
    enum Role {
        NameRole = Qt::UserRole,
        InsideRole, // how much lies in the folder; empty until it was looked into
    };

    // What choosing a folder would come to, and whether it can be had. Blocks; any thread.
    using Look = FolderChoice (*)(const FolderQuestion&, const std::stop_token&);

    explicit FolderPicker(CorvaneViewModel& model, Look look = &archiveFolderChoice,
                          QObject* parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    // The shown folder, as it is written into the field.
    [[nodiscard]] QString pathText() const;

    [[nodiscard]] bool canGoUp() const { return !path_.empty() && path_ != "/"; }

    [[nodiscard]] bool isBusy() const { return isBusy_; }

    [[nodiscard]] const QString& errorText() const { return errorText_; }

    // Where to begin, each with `name`, `detail`, `symbol` and `chosen`: whether it is the shown folder.
    [[nodiscard]] QVariantList places() const;

    [[nodiscard]] const std::string& chosenPath() const { return chosenPath_; }

    // What is selected in the list: a row, or the shown folder for -1. `choice` is about it.
    Q_INVOKABLE void select(int row);

    [[nodiscard]] const FolderChoice& choice() const { return choice_; }

    // The row of the folder that is to be selected at first: the one that the archive's own folder has, or
    // would have. -1 for none.
    Q_INVOKABLE [[nodiscard]] int firstRow() const;

    // Takes what the choice says, making its folder where there is none, or the selected folder as it is.
    // `chosen` follows, or an error.
    Q_INVOKABLE void use();

    Q_INVOKABLE void useAnyway() { choose(row_); }

    // The path that `choose` takes: that of the row's folder, of the shown one for -1.
    Q_INVOKABLE [[nodiscard]] QString targetText(int row) const;

    // The first row from `from` on, round the end, whose name begins so; -1 for none.
    Q_INVOKABLE [[nodiscard]] int rowStartingWith(const QString& text, int from) const;

    // Begins beside the present destination, or where it was, and never in an archive; without one at the
    // user's own folder.
    Q_INVOKABLE void begin();
    Q_INVOKABLE void openRow(int row);
    Q_INVOKABLE void openPlace(int place);
    Q_INVOKABLE void openTyped(const QString& text);
    Q_INVOKABLE void goUp();
    Q_INVOKABLE void makeFolder(const QString& name);
    // `chosen` follows, or an error.
    Q_INVOKABLE void choose(int row);

  Q_SIGNALS:
    void listed();
    void folderMade();
    void busyChanged();
    void errorChanged();
    void placesChanged();
    void choiceChanged();
    void chosen();

  private:
    struct Place {
        std::string path;
        QString name;
        QString detail;
        QString symbol;
    };

    using Job = std::function<FolderListing(PlaceLooks&)>;

    void open(const std::string& path);
    void list(Job job, screens::FolderAction action = screens::FolderAction::open);
    void show(std::string path, std::vector<screens::NamedFolder> folders);
    void setBusy(bool busy);
    void setError(const QString& text);
    void findPlaces();
    static std::vector<Place> usualPlaces(PlaceLooks& looks, const platform::Platform& platform);
    [[nodiscard]] std::string target(int row) const;
    void setChoice(FolderChoice choice);
    [[nodiscard]] FolderQuestion question() const;
    void lookInside();
    void takeFolder(std::string path, bool makes);

    CorvaneViewModel& model_;
    Look look_;
    std::string path_; // of the shown folder; empty before the first
    std::vector<screens::NamedFolder> folders_;
    std::vector<QString> insides_; // of the first folders; empty until they were looked into
    std::vector<Place> places_;
    int row_ = -1;
    FolderChoice choice_;
    std::string chosenPath_;
    QString errorText_;
    bool isBusy_ = false;
    TaskSlot task_;
    TaskSlot placesTask_;
    TaskSlot lookTask_;
    TaskSlot insideTask_;
};

} // namespace corvane
