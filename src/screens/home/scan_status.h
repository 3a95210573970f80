// The scan of Mail as the home shows it: whether one runs, how far it is, what came of the last one, and the
// way to a new one. Main thread.
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

#include "model/components/mail_components.h"
#include "screens/archive/archive_screen.h"

namespace corvane {

class ScanStatus : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("part of the home screen")
    Q_PROPERTY(bool isScanning READ isScanning NOTIFY changed)
    Q_PROPERTY(bool canUpdate READ canUpdate NOTIFY changed)
    Q_PROPERTY(QString updatedText READ updatedText NOTIFY changed)
    Q_PROPERTY(QString updateTitle READ updateTitle NOTIFY changed)
    Q_PROPERTY(QString line READ line NOTIFY changed)
    Q_PROPERTY(QString elapsed READ elapsed NOTIFY elapsedChanged)
    Q_PROPERTY(QVariantList accounts READ accounts NOTIFY accountsChanged)
    Q_PROPERTY(QString failureText READ failureText NOTIFY changed)
    Q_PROPERTY(bool isFailureAdvice READ isFailureAdvice NOTIFY changed)

  public:
    // Both must outlive it.
    ScanStatus(MailComponents& mail, ArchiveScreen& archive, QObject* parent = nullptr);

    [[nodiscard]] bool isScanning() const { return mail_.scanFlow.state().isScanning(); }

    // A scan would take the messages of a run from below it.
    [[nodiscard]] bool canUpdate() const { return !isScanning() && !archive_.isRunning(); }

    // When the data was read, and whether that is long ago; empty where it isn't known.
    [[nodiscard]] QString updatedText() const;

    // Of the button that starts a scan.
    [[nodiscard]] QString updateTitle() const;

    // What the scan is doing; empty without one.
    [[nodiscard]] QString line() const;

    // "0:42" since the scan has begun.
    [[nodiscard]] QString elapsed() const;

    // Those that are read, each with `name`, `symbol` and `line`.
    [[nodiscard]] QVariantList accounts() const;

    // Why the last scan failed; empty where it didn't.
    [[nodiscard]] QString failureText() const;

    // The failure is no error but says what to choose instead.
    [[nodiscard]] bool isFailureAdvice() const { return mail_.scanFlow.scanFailureIsYearRangeInfo(); }

    // Reads all Mail data again, where that is possible.
    Q_INVOKABLE void update();

  Q_SIGNALS:
    void changed();
    void elapsedChanged();
    void accountsChanged();

  private:
    void refresh();

    MailComponents& mail_;
    ArchiveScreen& archive_;
    QElapsedTimer clock_;
    QTimer tick_;
};

} // namespace corvane
