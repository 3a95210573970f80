// What the user can do with the mail that the library shows, and with what is selected in its list. Main
// thread. Without a mail the actions on it have no effect.
#pragma once

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include "model/corvane_view_model.h"
#include "screens/desktop/desktop_actions.h"
#include "screens/library/detail/archived_mail.h"
#include "screens/library/removal/removal_question.h"
#include "screens/library/rows/library_row_model.h"
#include "screens/library/rows/library_row_selection.h"

namespace corvane {

class LibraryActions : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the library")
    Q_PROPERTY(bool canRemove READ canRemove NOTIFY changed)

  public:
    // All must outlive it.
    LibraryActions(CorvaneViewModel& model, DesktopActions& desktop, LibraryRowModel& rows,
                   LibraryRowSelection& selection, ArchivedMail& mail, RemovalQuestion& removal,
                   QObject* parent = nullptr);

    // Something is selected, and no removal is under way.
    [[nodiscard]] bool canRemove() const;

    Q_INVOKABLE void openMail();

    // What is being brought back from a cloud stays there, and nothing is opened.
    Q_INVOKABLE void cancelOpening() { model_.library().mailOpening.cancel(); }

    Q_INVOKABLE void revealMail();
    Q_INVOKABLE void findOriginal();
    Q_INVOKABLE void copyRows();
    Q_INVOKABLE void copyMail();
    Q_INVOKABLE void removeSelected();

    // What the last removal left, as lines.
    Q_INVOKABLE void copyFailures() { desktop_.copy(removal_.failureLines()); }

    // The archive of the first one that stayed.
    Q_INVOKABLE void openFailureFolder();

  Q_SIGNALS:
    void changed();
    // What an action has to say.
    void noticed(const QString& text);

  private:
    void handleOpened();

    CorvaneViewModel& model_;
    DesktopActions& desktop_;
    LibraryRowModel& rows_;
    LibraryRowSelection& selection_;
    ArchivedMail& mail_;
    RemovalQuestion& removal_;
    TaskSlot copyTask_;
};

} // namespace corvane
