// The first step of the guide: the archived copies looked at, and the originals that are to be deleted
// compared with them.
// What it says rests on what the guide found last. Main thread.
#pragma once

#include <cstdint>
#include <optional>
#include <utility>

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include "model/archiving/proof/away_proof_count.h"
#include "model/corvane_view_model.h"
#include "screens/archived/figures/year_status.h"

namespace corvane {

class GuideProof : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("part of the guide")
    Q_PROPERTY(bool isComparing READ isComparing NOTIFY changed)
    Q_PROPERTY(bool isRunning READ isRunning NOTIFY changed)
    Q_PROPERTY(double fraction READ fraction NOTIFY changed)
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(QString line READ line NOTIFY changed)
    Q_PROPERTY(QString count READ count NOTIFY changed)

  public:
    // `model` must outlive it.
    explicit GuideProof(CorvaneViewModel& model, QObject* parent = nullptr);

    // What `start` compares.
    void setScope(ProofScope scope) { scope_ = std::move(scope); }

    // `freeable`: how many originals may be deleted; absent where no year can be cleaned.
    void show(OriginalKnowledge knowledge, std::optional<std::int64_t> freeable);

    // Something of the originals is being found out: no year may be cleaned meanwhile.
    [[nodiscard]] bool isComparing() const;

    // Originals are being compared, byte for byte.
    [[nodiscard]] bool isRunning() const { return model_.archiving().proof.isProving(); }

    // 0 to 1; 0 while none runs.
    [[nodiscard]] double fraction() const;

    // What was compared, or is being compared.
    [[nodiscard]] QString title() const;
    [[nodiscard]] QString line() const;

    // "12 / 340"; empty while none runs.
    [[nodiscard]] QString count() const;

    // Looks at the archives, then compares. No effect for an empty scope.
    Q_INVOKABLE void start();

    Q_INVOKABLE void cancel() { model_.archiving().proof.cancel(); }

  Q_SIGNALS:
    void changed();

  private:
    void compare();

    CorvaneViewModel& model_;
    bool looksAtArchives_ = false;
    ProofScope scope_;
    OriginalKnowledge knowledge_ = OriginalKnowledge::loading;
    std::optional<std::int64_t> freeable_;
    AwayProofCount away_; // of the scope
};

} // namespace corvane
