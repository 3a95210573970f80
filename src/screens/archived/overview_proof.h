// The comparison of originals with their archived copies, byte for byte, as the overview shows and starts it.
// Main thread.
#pragma once

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include "model/corvane_view_model.h"

namespace corvane {

class OverviewProof : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the overview")
    Q_PROPERTY(bool isRunning READ isRunning NOTIFY changed)
    Q_PROPERTY(double fraction READ fraction NOTIFY changed)
    Q_PROPERTY(QString count READ count NOTIFY changed)

  public:
    // `proof` must outlive it.
    explicit OverviewProof(ProofFlow& proof, QObject* parent = nullptr)
      : QObject(parent)
      , proof_(proof) {}

    [[nodiscard]] bool isRunning() const { return proof_.isProving(); }

    // 0 to 1; 0 while none runs.
    [[nodiscard]] double fraction() const;

    // "12 / 340 封"; empty while none runs.
    [[nodiscard]] QString count() const;

    // Compares all originals that are archived and weren't compared yet.
    Q_INVOKABLE void start() { proof_.prove({}); }

    Q_INVOKABLE void cancel() { proof_.cancel(); }

  Q_SIGNALS:
    void changed();

  private:
    ProofFlow& proof_;
};

} // namespace corvane
