// What the window shows: one object for each screen over the one application model, and what the frame around
// the screens needs. Main thread. Made by the entry; the QML root gets it as its initial property `app`.
#pragma once

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include "model/corvane_view_model.h"
#include "screens/desktop_actions.h"
#include "screens/mail_list_screen.h"

namespace corvane {

class WindowModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the entry of the program")
    Q_PROPERTY(corvane::MailListScreen* mails READ mails CONSTANT)

  public:
    // `model` must outlive the window's model.
    explicit WindowModel(CorvaneViewModel& model, QObject* parent = nullptr);

    [[nodiscard]] MailListScreen* mails() { return &mails_; }

  private:
    CorvaneViewModel& model_;
    DesktopActions desktop_;
    MailListScreen mails_;
};

} // namespace corvane
