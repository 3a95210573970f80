// What the window shows: one object for each screen over the one application model, and what the frame around
// the screens needs. Main thread. Made by the entry; the QML root gets it as its initial property `app`.
#pragma once

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include "model/corvane_view_model.h"
#include "screens/archive_screen.h"
#include "screens/desktop_actions.h"
#include "screens/home_screen.h"
#include "screens/mail_list_screen.h"
#include "screens/organize_data.h"

namespace corvane {

class WindowModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the entry of the program")
    Q_PROPERTY(corvane::HomeScreen* home READ home CONSTANT)
    Q_PROPERTY(corvane::ArchiveScreen* archive READ archive CONSTANT)
    Q_PROPERTY(corvane::MailListScreen* mails READ mails CONSTANT)

  public:
    // `model` must outlive the window's model.
    explicit WindowModel(CorvaneViewModel& model, QObject* parent = nullptr);

    [[nodiscard]] HomeScreen* home() { return &home_; }

    [[nodiscard]] ArchiveScreen* archive() { return &archive_; }

    [[nodiscard]] MailListScreen* mails() { return &mails_; }

  private:
    CorvaneViewModel& model_;
    DesktopActions desktop_;
    OrganizeData organizeData_;
    ArchiveScreen archive_;
    HomeScreen home_;
    MailListScreen mails_;
};

} // namespace corvane
