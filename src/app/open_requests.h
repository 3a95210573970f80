// What the desktop asks a running program to open: on a Mac addresses and folders come as events of the
// application, elsewhere as arguments of a second start. Main thread.
#pragma once

#include <QObject>
#include <QString>

namespace corvane {

class OpenRequests : public QObject {
    Q_OBJECT

  public:
    // Needs the application object, whose events it sees from here on.
    explicit OpenRequests(QObject* parent = nullptr);

  Q_SIGNALS:
    // "corvane://open?path=...", also for a folder that was given by its path.
    void requested(const QString& address);

  protected:
    bool eventFilter(QObject* object, QEvent* event) override;
};

} // namespace corvane
