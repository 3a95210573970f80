// The look for the originals in Mail and for their archived copies, as the overview shows and starts it. Main
// thread; the figures are the model's.
#pragma once

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include "model/corvane_view_model.h"

namespace corvane {

class OriginalCheck : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the overview")
    Q_PROPERTY(QString doneText READ doneText NOTIFY changed)
    Q_PROPERTY(bool isRunning READ isRunning NOTIFY changed)
    Q_PROPERTY(bool isEarlier READ isEarlier NOTIFY changed)
    Q_PROPERTY(bool canRun READ canRun NOTIFY changed)

  public:
    // `model` must outlive it.
    explicit OriginalCheck(CorvaneViewModel& model, QObject* parent = nullptr);

    // When the last one was; empty while one runs.
    [[nodiscard]] QString doneText() const;

    [[nodiscard]] bool isRunning() const {
        return looksAtArchives_ || model_.library().presence.archivedOriginalPresenceChecking();
    }

    // What is known comes from an earlier run of the program, or couldn't be asked anew.
    [[nodiscard]] bool isEarlier() const;

    // There is an overview of archived mail, and no check runs.
    [[nodiscard]] bool canRun() const;

    // Asks Mail which originals are there, and looks at the archives anew. No effect while it does.
    Q_INVOKABLE void run();

  Q_SIGNALS:
    void changed();

  private:
    CorvaneViewModel& model_;
    bool looksAtArchives_ = false;
};

} // namespace corvane
