// What is shown in place of the window when it can't open, because another start of the program holds the
// home and doesn't answer. Main thread. Trying again is up to the owner, who ends it with `setRetrying`.
#pragma once

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace corvane {

class BlockedStart : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the start of the program")
    Q_PROPERTY(QString title READ title CONSTANT)
    Q_PROPERTY(QString line READ line CONSTANT)
    Q_PROPERTY(bool retrying READ isRetrying NOTIFY retryingChanged)

  public:
    BlockedStart(QString title, QString line);

    [[nodiscard]] const QString& title() const { return title_; }

    [[nodiscard]] const QString& line() const { return line_; }

    [[nodiscard]] bool isRetrying() const { return isRetrying_; }

    void setRetrying(bool retrying);

    // No effect while a try is under way.
    Q_INVOKABLE void retry();

  Q_SIGNALS:
    void retryingChanged();
    void retryRequested();

  private:
    QString title_;
    QString line_;
    bool isRetrying_ = false;
};

} // namespace corvane
