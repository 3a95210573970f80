// The sheet of archive places: all that are known with their state, and what can be done about each. Main
// thread. It looks at the places when it is opened and whenever something about them changes while it is
// open, and every few seconds; nothing in an archive is changed but the index that is made anew where
// somebody asks for that.
#pragma once

#include <string>

#include <QObject>
#include <QTimer>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

#include "model/corvane_view_model.h"
#include "screens/archive/places/folder_picker.h"
#include "screens/archive/run/run_pace.h"
#include "screens/desktop/desktop_actions.h"
#include "screens/places/place_rows_model.h"

namespace corvane {

class PlacesScreen : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the window")
    Q_PROPERTY(bool isOpen READ isOpen NOTIFY changed)
    Q_PROPERTY(QString summary READ summary NOTIFY changed)
    Q_PROPERTY(QString emptyText READ emptyText NOTIFY changed)
    Q_PROPERTY(bool canVerifyAll READ canVerifyAll NOTIFY changed)
    Q_PROPERTY(corvane::PlaceRowsModel* rows READ rows CONSTANT)
    Q_PROPERTY(corvane::FolderPicker* picker READ picker CONSTANT)

  public:
    // Both must outlive it.
    PlacesScreen(CorvaneViewModel& model, DesktopActions& desktop, QObject* parent = nullptr);

    [[nodiscard]] bool isOpen() const { return isOpen_; }

    // "5 个位置，49,871 封，12.64 GB"; empty without any.
    [[nodiscard]] QString summary() const;

    // What stands in the place of the list; empty where there is one.
    [[nodiscard]] QString emptyText() const;

    // A place that isn't being verified already can be.
    [[nodiscard]] bool canVerifyAll() const;

    [[nodiscard]] PlaceRowsModel* rows() { return &rows_; }

    // For a place that is added.
    [[nodiscard]] FolderPicker* picker() { return &picker_; }

    Q_INVOKABLE void open();
    Q_INVOKABLE void close();

    // Each is without effect where the row can't do it, or isn't there.
    Q_INVOKABLE void verify(int row);
    Q_INVOKABLE void verifyAll();
    Q_INVOKABLE void rebuild(int row);
    Q_INVOKABLE void cancelWork(int row);
    Q_INVOKABLE void makeDefault(int row);
    Q_INVOKABLE void showFolder(int row);
    Q_INVOKABLE void showFinding(int row, int finding);
    Q_INVOKABLE void copyFindings(int row);

    // What is asked before a place is forgotten; empty for a row that isn't there. The answer is for the
    // place of the last question.
    Q_INVOKABLE QString forgetTitle(int row);
    Q_INVOKABLE [[nodiscard]] QString forgetLine() const;
    Q_INVOKABLE void forget();

    // The place that is added next stands for this one, if it turns out to hold the same archive; -1 for
    // none.
    Q_INVOKABLE void beginChoice(int row);
    Q_INVOKABLE void addFolder(const QUrl& folder);

  Q_SIGNALS:
    void changed();

  private:
    void wire();
    void refreshWhileOpen();
    void updateRows();
    QString timeLeft();
    void add(const std::string& path);
    void dropReplaced();
    [[nodiscard]] const ArchivePlace* placeAt(int row) const;
    [[nodiscard]] std::string findingPath(int row, int finding) const;

    CorvaneViewModel& model_;
    DesktopActions& desktop_;
    PlaceRowsModel rows_;
    FolderPicker picker_;
    bool isOpen_ = false;
    QTimer nextLook_;       // not every system tells of a folder that is renamed
    std::string pacedRoot_; // of the work that `pace_` is of
    RunPace pace_;
    std::string askedRoot_;    // of the last question whether to forget
    std::string replacedRoot_; // what the next place stands for; empty for none
    std::string replacement_;  // that was added for it, until the library has read it
};

} // namespace corvane
