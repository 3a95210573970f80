// What the user can do with the selected messages of the mail list, and with the current one. Main thread.
// Without a current row the actions on one message have no effect.
#pragma once

#include <memory>

#include <QObject>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

#include "model/corvane_view_model.h"
#include "screens/desktop/desktop_actions.h"
#include "screens/lists/message_list_model.h"
#include "screens/mails/mail_list_filters.h"

namespace corvane {

class MailListActions : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the mail list")

  public:
    // All must outlive it.
    MailListActions(CorvaneViewModel& model, DesktopActions& desktop, MessageListModel& list,
                    MailListFilters& filters, QObject* parent = nullptr);

    // The selected rows as lines of text. Large selections arrive a moment later.
    Q_INVOKABLE void copySelection();
    Q_INVOKABLE void copySubject();
    Q_INVOKABLE void copyMessageID();
    Q_INVOKABLE void copyPath();

    // In the file manager; `failed` when that can't be done, as with the next two.
    Q_INVOKABLE void revealFile();
    Q_INVOKABLE void openFile();

    // The message in the mail program, by its Message-ID; its file where that can't be done.
    Q_INVOKABLE void openInMail();
    Q_INVOKABLE void filterBySender();
    Q_INVOKABLE void filterByYear();

    // `archiveRequested` with the selected messages that aren't archived, or `failed` without any; for large
    // selections a moment later.
    Q_INVOKABLE void archiveSelection();

    // Sets the current message aside, or takes it back; no effect without one.
    Q_INVOKABLE void setAside(bool isSetAside);

  Q_SIGNALS:
    void archiveRequested(std::shared_ptr<const corvane::SharedTextSet> ids);
    // What didn't work, and why.
    void failed(const QString& text);

  private:
    [[nodiscard]] const MailMessageRecord* current() const;
    void requestArchive(const std::shared_ptr<const SharedTextSet>& ids);

    CorvaneViewModel& model_;
    DesktopActions& desktop_;
    MessageListModel& list_;
    MailListFilters& filters_;
    TaskSlot copyTask_;
    TaskSlot archiveTask_;
};

} // namespace corvane
