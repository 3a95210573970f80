// The settings that travel with the archives, as the window asks and tells of them: the offer of a fresh
// start, the question before an import, and what came of an export or import. Main thread. Nothing is taken
// over before `accept`.
#pragma once

#include <string>

#include <QObject>
#include <QUrl>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

#include "model/corvane_view_model.h"
#include "screens/archive/places/folder_picker.h"
#include "screens/desktop/desktop_actions.h"

namespace corvane {

class SettingsTravel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the window")
    Q_PROPERTY(Step step READ step NOTIFY changed)
    // What the backup holds: maps with `label` and `value`.
    Q_PROPERTY(QVariantList summary READ summary NOTIFY changed)
    Q_PROPERTY(QString note READ note NOTIFY changed)
    Q_PROPERTY(QString result READ result NOTIFY changed)
    Q_PROPERTY(bool hasFailed READ hasFailed NOTIFY changed)
    Q_PROPERTY(bool isExported READ isExported NOTIFY changed)
    Q_PROPERTY(bool canChooseAnother READ canChooseAnother NOTIFY changed)
    // Where an export goes, and where an import comes from.
    Q_PROPERTY(corvane::FolderPicker* exportPicker READ exportPicker CONSTANT)
    Q_PROPERTY(corvane::FolderPicker* importPicker READ importPicker CONSTANT)
    Q_PROPERTY(QString exportName READ exportName CONSTANT)

  public:
    enum class Step { Closed, Offer, Question, Result };
    Q_ENUM(Step)

    // Both must outlive it.
    SettingsTravel(CorvaneViewModel& model, DesktopActions& desktop, QObject* parent = nullptr);

    [[nodiscard]] Step step() const;
    [[nodiscard]] QVariantList summary() const;

    // Where the offered backup was found; empty for an import.
    [[nodiscard]] QString note() const;

    // Of an export or import that has ended; else empty.
    [[nodiscard]] QString result() const;

    [[nodiscard]] bool hasFailed() const { return flow_.hasFailed(); }

    // `result` is that of an export that succeeded.
    [[nodiscard]] bool isExported() const { return isExporting_ && !hasFailed(); }

    // `result` is that of a file that couldn't be read.
    [[nodiscard]] bool canChooseAnother() const { return !isExporting_ && hasFailed(); }

    [[nodiscard]] FolderPicker* exportPicker() { return &exportPicker_; }

    [[nodiscard]] FolderPicker* importPicker() { return &importPicker_; }

    [[nodiscard]] static QString exportName();

    // A file of this system; no effect for any other address. `result` or the question follows.
    Q_INVOKABLE void exportTo(const QUrl& file);
    Q_INVOKABLE void importFrom(const QUrl& file);

    // A path that was typed into the import's field: no effect, and false, unless it is that of a file's
    // name.
    Q_INVOKABLE bool importTyped(const QString& path);

    // Takes over what was offered or asked about.
    Q_INVOKABLE void accept();

    // Gives that up, or has read the result.
    Q_INVOKABLE void close();

    // Shows the exported file where it lies.
    Q_INVOKABLE void showExported();

  Q_SIGNALS:
    void changed();

  private:
    void exportToPath(const std::string& path);
    void importFromPath(const std::string& path);
    [[nodiscard]] const CorvaneConfigBackup* pending() const;

    CorvaneViewModel& model_;
    DesktopActions& desktop_;
    ConfigBackupFlow& flow_;
    FolderPicker exportPicker_;
    FolderPicker importPicker_;
    bool isExporting_ = false;
    std::string exportedPath_;
};

} // namespace corvane
