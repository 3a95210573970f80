// The screen 邮件列表: the list over the model's visible messages, its selection and filters, the detail of
// the current row, and what can be done with the selected messages. Main thread.
//
// A new list of the model is compared with the shown one in the background and applied in one step, so that
// rows come and go in place.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include "model/corvane_view_model.h"
#include "screens/lists/message_list_model.h"
#include "screens/mails/detail/message_detail.h"
#include "screens/mails/mail_list_filters.h"
#include "screens/shell/desktop_actions.h"

namespace corvane {

class MailListScreen : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the window")
    Q_PROPERTY(State state READ state NOTIFY stateChanged)
    Q_PROPERTY(QString stateText READ stateText NOTIFY stateChanged)
    Q_PROPERTY(QString summaryText READ summaryText NOTIFY summaryChanged)
    Q_PROPERTY(QString selectionText READ selectionText NOTIFY summaryChanged)
    Q_PROPERTY(bool held READ isHeld WRITE setHeld NOTIFY heldChanged)
    Q_PROPERTY(bool canArchive READ canArchive NOTIFY canArchiveChanged)
    Q_PROPERTY(corvane::MessageListModel* list READ list CONSTANT)
    Q_PROPERTY(corvane::ListSelection* selection READ selection CONSTANT)
    Q_PROPERTY(corvane::MailListFilters* filters READ filters CONSTANT)
    Q_PROPERTY(corvane::MessageDetail* detail READ detail CONSTANT)

  public:
    // Capitals: QML takes no other names.
    enum class State {
        Listed,
        Loading,      // there are messages, and what of them to list isn't known yet
        NoMatch,      // the filters hide all messages
        NothingLocal, // no message has its file on this machine
        Scanning,
        NoAccess,
        Failed,
        NeverScanned,
    };
    Q_ENUM(State)

    // Both must outlive the screen.
    MailListScreen(CorvaneViewModel& model, DesktopActions& desktop, QObject* parent = nullptr);

    [[nodiscard]] State state() const { return state_; }

    // The line of progress or the failure's message; empty in other states.
    [[nodiscard]] QString stateText() const;

    // Count and size of the list.
    [[nodiscard]] QString summaryText() const;

    // Count and size of the selection, when it is more than one row.
    [[nodiscard]] QString selectionText() const;

    // While something is pressed or a menu is open, the rows stay as they are.
    [[nodiscard]] bool isHeld() const { return isHeld_; }

    void setHeld(bool held);

    // One of the selected messages isn't archived, and no run is under way. Where so many are selected that
    // looking would hold the window, one of them is taken to be.
    [[nodiscard]] bool canArchive() const { return canArchive_; }

    [[nodiscard]] MessageListModel* list() { return &list_; }

    [[nodiscard]] ListSelection* selection() { return &list_.selection(); }

    [[nodiscard]] MailListFilters* filters() { return &filters_; }

    [[nodiscard]] MessageDetail* detail() { return &detail_; }

    // Makes the current row that of this message, if it is listed.
    Q_INVOKABLE void showMessage(const QString& id);

    Q_INVOKABLE void cancelScan();
    Q_INVOKABLE void recheckAccess();
    Q_INVOKABLE void openAccessSettings();

    // The selected rows as lines of text. Large selections arrive a moment later.
    Q_INVOKABLE void copySelection();
    Q_INVOKABLE void copySubject();
    Q_INVOKABLE void copyMessageID();
    Q_INVOKABLE void copyPath();
    Q_INVOKABLE void revealFile();
    Q_INVOKABLE void openFile();

    // The message in the mail program, by its Message-ID; its file where that can't be done.
    Q_INVOKABLE void openInMail();
    Q_INVOKABLE void filterBySender();
    Q_INVOKABLE void filterByYear();

    // Hands the selected messages that aren't archived to the archive screen; large selections a moment
    // later.
    Q_INVOKABLE void archiveSelection();

  Q_SIGNALS:
    void stateChanged();
    void summaryChanged();
    void heldChanged();
    void canArchiveChanged();
    // The list is another one because filters or order are others: the view shows the current row.
    void listRearranged();
    void archiveRequested(std::shared_ptr<const corvane::SharedTextSet> ids);
    // An action didn't work; the text says what and why.
    void actionFailed(const QString& text);

  private:
    struct Update;

    void wire();
    void followList();
    void take(std::shared_ptr<Update> update);
    void apply(Update& update);
    void followSelectedMessage();
    void takeCurrentRow();
    void showDetail();
    void takePreview(const QString& id);
    void followArchived();
    void recount();
    void updateState();
    void updateCanArchive();
    [[nodiscard]] bool mayArchiveSelection() const;
    [[nodiscard]] State currentState() const;
    [[nodiscard]] const MailMessageRecord* current() const;
    void handOver(const std::shared_ptr<const SharedTextSet>& ids);
    bool openOrTell(const QUrl& url);

    CorvaneViewModel& model_;
    DesktopActions& desktop_;
    MessageListModel list_;
    MailListFilters filters_;
    MessageDetail detail_;
    State state_ = State::NeverScanned;
    bool canArchive_ = false;
    bool isUpdating_ = false;
    bool isApplying_ = false;
    bool isHeld_ = false;
    bool isRearranging_ = false;
    std::shared_ptr<Update> waiting_;
    // Sizes of all rows before each row and, last, of all: any range is summed at once.
    std::vector<std::int64_t> bytesBefore_ = {0};
    TaskSlot updateTask_;
    TaskSlot countTask_;
    TaskSlot copyTask_;
    TaskSlot archiveTask_;
};

} // namespace corvane
