// What the user can do while Mail can't be read, or while it is being read: have the permission looked at
// again, open the settings in which it is given, stop the scan, go back to the last whole one. Main thread.
#pragma once

#include <QObject>
#include <QVariantMap>
#include <QtQml/qqmlregistration.h>

#include "model/components/mail_components.h"
#include "screens/desktop/desktop_actions.h"

namespace corvane {

class AccessActions : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to a screen")
    // What can't be read, for a system without a page of settings for it: `path`, `state`, `owner`, `mode`,
    // `missing`. Empty where nothing is known.
    Q_PROPERTY(QVariantMap obstacle READ obstacle NOTIFY accessChanged)
    // What the last look that the user asked for has come to; empty before one.
    Q_PROPERTY(QString answer READ answer NOTIFY accessChanged)
    Q_PROPERTY(bool isChecking READ isChecking NOTIFY accessChanged)
    Q_PROPERTY(QString restoreTitle READ restoreTitle NOTIFY restorableChanged)
    Q_PROPERTY(bool isRestoring READ isRestoring NOTIFY restorableChanged)

  public:
    // Both must outlive it.
    AccessActions(MailComponents& mail, DesktopActions& desktop, QObject* parent = nullptr);

    Q_INVOKABLE void recheckAccess();

    [[nodiscard]] QVariantMap obstacle() const;

    // What is missing, in a sentence.
    [[nodiscard]] QString summary() const;

    [[nodiscard]] const QString& answer() const { return answer_; }

    [[nodiscard]] bool isChecking() const { return mail_.diskAccess.isChecking(); }

    Q_INVOKABLE void copyObstaclePath();

    // The system's page for the permission; `failed` where it can't be opened.
    Q_INVOKABLE void openPrivacySettings();
    Q_INVOKABLE void cancelScan();

    // Of the button that brings back the last whole scan; empty where the list is whole, or there is none.
    [[nodiscard]] QString restoreTitle() const;

    [[nodiscard]] bool isRestoring() const { return mail_.scanFlow.isRestoring(); }

    // No effect where there is nothing to bring back.
    Q_INVOKABLE void restoreLastScan();

  Q_SIGNALS:
    // What didn't work, and what to do instead.
    void failed(const QString& text);
    void restorableChanged();
    void accessChanged();

  private:
    void handleChecked();

    MailComponents& mail_;
    DesktopActions& desktop_;
    bool isAsked_ = false; // the look that runs was asked for by the user
    QString answer_;
};

} // namespace corvane
