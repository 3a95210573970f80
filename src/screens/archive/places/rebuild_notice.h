// What the archive sheet says of a chosen archive whose index is lost while its mail is there, and of the way
// back. Main thread.
#pragma once

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

#include "model/archiving/archive_rebuild_flow.h"

namespace corvane {

class RebuildNotice : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("part of the archive sheet")
    Q_PROPERTY(bool isShown READ isShown NOTIFY changed)
    Q_PROPERTY(bool isRunning READ isRunning NOTIFY changed)
    Q_PROPERTY(bool canStart READ canStart NOTIFY changed)
    Q_PROPERTY(QString kind READ kind NOTIFY changed)
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(QString text READ text NOTIFY changed)

  public:
    // The flow must outlive it.
    explicit RebuildNotice(ArchiveRebuildFlow& rebuild, QObject* parent = nullptr);

    [[nodiscard]] bool isShown() const;

    [[nodiscard]] bool isRunning() const { return rebuild_.isRunning(); }

    [[nodiscard]] bool canStart() const { return rebuild_.offer().has_value() && !isRunning(); }

    // Of the banner control.
    [[nodiscard]] QString kind() const;
    [[nodiscard]] QString title() const;
    [[nodiscard]] QString text() const;

    Q_INVOKABLE void start() { rebuild_.start(); }

    Q_INVOKABLE void cancel() { rebuild_.cancel(); }

  Q_SIGNALS:
    void changed();

  private:
    [[nodiscard]] bool hasFailed() const;
    [[nodiscard]] QString resultText() const;

    ArchiveRebuildFlow& rebuild_;
};

} // namespace corvane
