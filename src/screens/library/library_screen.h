// The screen 归档库: the list over the model's library, its selection and filters, the mail that is shown,
// and what can be done with what is selected. Main thread.
//
// A new list of the model is made into rows and compared with the shown ones in the background; rows come and
// go in one step, together with the selection that belongs to them.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include "model/corvane_view_model.h"
#include "screens/desktop/desktop_actions.h"
#include "screens/library/detail/archived_mail.h"
#include "screens/library/detail/attachment_tiles.h"
#include "screens/library/library_actions.h"
#include "screens/library/library_filter_menus.h"
#include "screens/library/library_search.h"
#include "screens/library/removal/removal_question.h"
#include "screens/library/rows/library_row_model.h"
#include "screens/library/rows/library_row_selection.h"
#include "screens/library/rows/row_texts.h"

namespace corvane {

class LibraryScreen : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the window")
    Q_PROPERTY(State state READ state NOTIFY stateChanged)
    Q_PROPERTY(QString awayPlaces READ awayPlaces NOTIFY stateChanged)
    Q_PROPERTY(QString summaryText READ summaryText NOTIFY summaryChanged)
    Q_PROPERTY(bool ascending READ isAscending WRITE setAscending NOTIFY summaryChanged)
    Q_PROPERTY(bool held READ isHeld WRITE setHeld NOTIFY heldChanged)
    Q_PROPERTY(corvane::LibraryRowModel* list READ list CONSTANT)
    Q_PROPERTY(corvane::LibraryRowSelection* selection READ selection CONSTANT)
    Q_PROPERTY(corvane::LibraryFilterMenus* filters READ filters CONSTANT)
    Q_PROPERTY(corvane::LibrarySearch* search READ search CONSTANT)
    Q_PROPERTY(corvane::ArchivedMail* mail READ mail CONSTANT)
    Q_PROPERTY(corvane::AttachmentTiles* attachments READ attachments CONSTANT)
    Q_PROPERTY(corvane::RemovalQuestion* removal READ removal CONSTANT)
    Q_PROPERTY(corvane::LibraryActions* actions READ actions CONSTANT)

  public:
    enum class State { Listed, Loading, NoMatch, Empty };
    Q_ENUM(State)

    // Both must outlive the screen.
    LibraryScreen(CorvaneViewModel& model, DesktopActions& desktop, QObject* parent = nullptr);

    // Somebody looks at the screen for the first time: the index is made from here on.
    Q_INVOKABLE void appear();

    [[nodiscard]] State state() const { return state_; }

    // The names of the archives that aren't connected; empty where all are.
    [[nodiscard]] QString awayPlaces() const;

    // Count and size of what is selected where it is more than one mail, else of the list.
    [[nodiscard]] QString summaryText() const;

    [[nodiscard]] bool isAscending() const { return model_.library().list.sortAscending(); }

    void setAscending(bool ascending) { model_.library().list.setSortAscending(ascending); }

    // While something is pressed or a menu is open, the rows stay as they are.
    [[nodiscard]] bool isHeld() const { return isHeld_; }

    void setHeld(bool held);

    [[nodiscard]] LibraryRowModel* list() { return &rows_; }

    [[nodiscard]] LibraryRowSelection* selection() { return &selection_; }

    [[nodiscard]] LibraryFilterMenus* filters() { return &filters_; }

    [[nodiscard]] LibrarySearch* search() { return &search_; }

    [[nodiscard]] ArchivedMail* mail() { return &mail_; }

    [[nodiscard]] AttachmentTiles* attachments() { return &attachments_; }

    [[nodiscard]] RemovalQuestion* removal() { return &removal_; }

    [[nodiscard]] LibraryActions* actions() { return &actions_; }

    // Opens or closes the thread of a row; no effect on other rows.
    Q_INVOKABLE void toggleThread(int row);

    // What the arrows left and right do: closes the thread or goes to its row, opens it or goes to its first.
    Q_INVOKABLE void closeThread(int row);
    Q_INVOKABLE void openThread(int row);

  Q_SIGNALS:
    void stateChanged();
    void summaryChanged();
    void heldChanged();
    // The list is another one because filters or order are others: the view shows the current row.
    void listRearranged();

  private:
    struct Update;

    void wire();
    void updateRows();
    void applyUnlessHeld(std::shared_ptr<Update> update);
    void apply(Update& update);
    void updateSelection();
    void sumUpSelection();
    void updateState();
    void showMail();
    void insertMembers(int row);
    void removeMembers(int row);
    void applyRows(LibraryRows rows, RowChanges changes);
    [[nodiscard]] State currentState() const;

    CorvaneViewModel& model_;
    RowTexts texts_;
    LibraryRowModel rows_;
    LibraryRowSelection selection_;
    LibraryFilterMenus filters_;
    LibrarySearch search_;
    ArchivedMail mail_;
    AttachmentTiles attachments_;
    RemovalQuestion removal_;
    LibraryActions actions_;
    OpenThreads open_;
    State state_ = State::Loading;
    bool hasAppeared_ = false;
    bool isHeld_ = false;
    bool isRearranging_ = false;
    std::shared_ptr<Update> waiting_;
    std::optional<std::int64_t> selectedBytes_; // of several mails; absent while they are summed up
    TaskSlot rowsTask_;
    TaskSlot sumTask_;
};

} // namespace corvane
