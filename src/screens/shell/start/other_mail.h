// Mail of another home, or in a folder of its own, opened in place of what is open: a home is opened as it
// is; a folder of Mail gets a home among the program's own data that leads to it. Main thread; the disk is
// touched in the background.
#pragma once

#include <stop_token>
#include <string>

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include "model/corvane_view_model.h"
#include "model/tasks/task_slot.h"
#include "screens/archive/places/folder_picker.h"

namespace corvane {

class OtherMail : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the window")
    Q_PROPERTY(corvane::FolderPicker* picker READ picker CONSTANT)
    Q_PROPERTY(QString errorText READ errorText NOTIFY changed)

  public:
    explicit OtherMail(CorvaneViewModel& model, QObject* parent = nullptr);

    [[nodiscard]] FolderPicker* picker() { return &picker_; }

    // Why the last folder couldn't be opened; empty where it could.
    [[nodiscard]] const QString& errorText() const { return errorText_; }

  Q_SIGNALS:
    void changed();
    // The mail is in this home.
    void ready(const QString& home);

  private:
    void open();

    CorvaneViewModel& model_;
    FolderPicker picker_;
    QString errorText_;
    TaskSlot task_;
};

// What a folder has to do with Mail: the home it is, or that it lies in, or a folder of Mail that has to be
// given one. Blocks.
FolderChoice mailChoice(const FolderQuestion& question, const std::stop_token& stop);

} // namespace corvane
