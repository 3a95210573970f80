// Where the next archive run writes, as the foot of the sidebar shows it. Main thread; it tells what the
// model knows and touches no disk.
#pragma once

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include "model/corvane_view_model.h"

namespace corvane {

class ArchivePlace : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the window")
    Q_PROPERTY(QString symbol READ symbol NOTIFY changed)
    Q_PROPERTY(QString name READ name NOTIFY changed)
    Q_PROPERTY(QString line READ line NOTIFY changed)
    Q_PROPERTY(QString path READ path NOTIFY changed)
    // Chosen, but out of reach.
    Q_PROPERTY(bool missing READ missing NOTIFY changed)

  public:
    // `model` must outlive it.
    explicit ArchivePlace(CorvaneViewModel& model, QObject* parent = nullptr);

    [[nodiscard]] QString symbol() const;
    [[nodiscard]] QString name() const;
    [[nodiscard]] QString line() const;
    [[nodiscard]] QString path() const;
    [[nodiscard]] bool missing() const;

  Q_SIGNALS:
    void changed();

  private:
    CorvaneViewModel& model_;
};

} // namespace corvane
