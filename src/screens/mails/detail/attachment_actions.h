// What can be done with the attachments of the shown message that can be had from this machine: from files
// that Mail keeps, or out of the message itself. Mail's own files are never given to a program: each
// attachment is copied first. Main thread; the disk is touched in the background.
#pragma once

#include <memory>
#include <string>

#include <QObject>
#include <QTimer>
#include <QtQml/qqmlregistration.h>

#include "model/model_context.h"
#include "model/tasks/task_slot.h"
#include "platform/files/writing/temporary_file.h"
#include "screens/desktop/desktop_actions.h"
#include "screens/mails/detail/attachment_list_model.h"

namespace corvane {

class AttachmentActions : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the mail list")

  public:
    // All must outlive it.
    AttachmentActions(ModelContext& context, DesktopActions& desktop, AttachmentListModel& list,
                      QObject* parent = nullptr);

    // Looks where the attachments of the list lie, and a little later how large those are of which no size is
    // known.
    void look();

    // A copy in the program that the system has for it. What the system might start is shown in its folder
    // instead, and `said` tells why.
    Q_INVOKABLE void open(int row);

    // A copy in the user's folder for downloads, under a name that nothing there has; `said` tells where.
    Q_INVOKABLE void save(int row);

    // Where it lies, or the message that it lies in.
    Q_INVOKABLE void reveal(int row);

  Q_SIGNALS:
    // What came of it, for the user.
    void said(const QString& text);

  private:
    struct CopyJob;
    struct Copied;

    static Copied copyOf(const CopyJob& job, const TaskHandle& task);
    void lookAtSizes();
    void handleOpenCopy(const Copied& copied);
    void showInFolder(const std::string& path, const QString& word);

    ModelContext& context_;
    DesktopActions& desktop_;
    AttachmentListModel& list_;
    // Made with the first copy that is opened; goes with the window.
    std::shared_ptr<platform::TemporaryFolder> opened_;
    QTimer sizeDelay_;
    TaskSlot lookTask_;
    TaskSlot sizeTask_;
    TaskSlot openTask_;
    TaskSlot saveTask_;
};

} // namespace corvane
