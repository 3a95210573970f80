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
#include "screens/desktop/access_actions.h"
#include "screens/desktop/desktop_actions.h"
#include "screens/lists/message_list_model.h"
#include "screens/mails/detail/attachment_actions.h"
#include "screens/mails/detail/message_detail.h"
#include "screens/mails/mail_list_actions.h"
#include "screens/mails/mail_list_filters.h"
#include "screens/mails/row_previews.h"

namespace corvane {

class MailListScreen : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the window")
    Q_PROPERTY(State state READ state NOTIFY stateChanged)
    Q_PROPERTY(QString stateText READ stateText NOTIFY stateChanged)
    Q_PROPERTY(QString summaryText READ summaryText NOTIFY summaryChanged)
    Q_PROPERTY(QString selectionText READ selectionText NOTIFY summaryChanged)
    Q_PROPERTY(QString partialText READ partialText NOTIFY partialChanged)
    Q_PROPERTY(bool held READ isHeld WRITE setHeld NOTIFY heldChanged)
    Q_PROPERTY(bool canArchive READ canArchive NOTIFY canArchiveChanged)
    Q_PROPERTY(corvane::MessageListModel* list READ list CONSTANT)
    Q_PROPERTY(corvane::ListSelection* selection READ selection CONSTANT)
    Q_PROPERTY(corvane::MailListFilters* filters READ filters CONSTANT)
    Q_PROPERTY(corvane::MessageDetail* detail READ detail CONSTANT)
    Q_PROPERTY(corvane::MailListActions* actions READ actions CONSTANT)
    Q_PROPERTY(corvane::AttachmentActions* attachments READ attachments CONSTANT)
    Q_PROPERTY(corvane::RowPreviews* rowPreviews READ rowPreviews CONSTANT)
    Q_PROPERTY(corvane::AccessActions* access READ access CONSTANT)

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
        Partial, // a scan didn't come to its end, and what it listed isn't all
    };
    Q_ENUM(State)

    // Both must outlive the screen.
    MailListScreen(CorvaneViewModel& model, DesktopActions& desktop, QObject* parent = nullptr);

    [[nodiscard]] State state() const { return state_; }

    // The line of progress or the failure's message; empty in other states, and where there is no failure.
    [[nodiscard]] QString stateText() const;

    // Count and size of the list.
    [[nodiscard]] QString summaryText() const;

    // Count and size of the selection, when it is more than one row.
    [[nodiscard]] QString selectionText() const;

    // Of the mail that Mail holds in part, and that isn't listed; empty without any.
    [[nodiscard]] QString partialText() const;

    // While something is pressed or a menu is open, the rows stay as they are.
    [[nodiscard]] bool isHeld() const { return isHeld_; }

    void setHeld(bool held);

    // One of the selected messages isn't archived, and no run is under way. Where so many are selected that
    // looking would hold the window, one of them is taken to be.
    [[nodiscard]] bool canArchive() const { return canArchive_; }

    [[nodiscard]] MessageListModel* list() { return &list_; }

    [[nodiscard]] ListSelection* selection() { return list_.selection(); }

    [[nodiscard]] MailListFilters* filters() { return &filters_; }

    [[nodiscard]] MessageDetail* detail() { return &detail_; }

    [[nodiscard]] MailListActions* actions() { return &actions_; }

    [[nodiscard]] AttachmentActions* attachments() { return &attachments_; }

    [[nodiscard]] RowPreviews* rowPreviews() { return &rowPreviews_; }

    [[nodiscard]] AccessActions* access() { return &access_; }

    // Makes the current row that of this message, if it is listed.
    Q_INVOKABLE void showMessage(const QString& id);

  Q_SIGNALS:
    void stateChanged();
    void summaryChanged();
    void partialChanged();
    void heldChanged();
    void canArchiveChanged();
    // The list is another one because its filters are others: the view shows the current row.
    void listRearranged();
    // The list was sorted or searched: the view shows its beginning.
    void listReordered();

  private:
    struct Update;

    void wire();
    void updateList();
    void applyUnlessHeld(std::shared_ptr<Update> update);
    void apply(Update& update);
    void showSelectedMessage();
    void showBeginning();
    void handleCurrentRowChange();
    void showDetail();
    void updatePreview(const QString& id);
    void updateArchived();
    void recount();
    void updateState();
    void updateCanArchive();
    [[nodiscard]] bool canBeArchived(const MailMessageRecord& message) const;
    [[nodiscard]] bool mayArchiveSelection() const;
    [[nodiscard]] State currentState() const;
    [[nodiscard]] const MailMessageRecord* current() const;

    CorvaneViewModel& model_;
    MessageListModel list_;
    MailListFilters filters_;
    MessageDetail detail_;
    AttachmentActions attachments_;
    RowPreviews rowPreviews_;
    MailListActions actions_;
    AccessActions access_;
    State state_ = State::NeverScanned;
    bool canArchive_ = false;
    bool isUpdating_ = false;
    bool isApplying_ = false;
    bool isHeld_ = false;
    bool isRearranging_ = false;
    bool wasRowChosen_ = false; // while the next list is made
    ListRules rules_;           // of the shown list
    std::shared_ptr<Update> waiting_;
    // Sizes of all rows before each row and, last, of all: any range is summed at once.
    std::vector<std::int64_t> bytesBefore_ = {0};
    TaskSlot updateTask_;
    TaskSlot countTask_;
};

} // namespace corvane
