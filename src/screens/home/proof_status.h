// How much of what is looked at was compared with its archived copies, byte for byte, and the comparison
// itself: what the line of proof in the home's banner shows. Main thread.
#pragma once

#include <cstdint>

#include <QObject>
#include <QString>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

#include "listing/deletion/deletion_safety.h"
#include "model/archiving/proof/away_proof_count.h"
#include "model/archiving/proof/proof_job.h"
#include "model/corvane_view_model.h"

namespace corvane {

class ProofStatus : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the home")
    Q_PROPERTY(QVariantList items READ items NOTIFY changed)
    Q_PROPERTY(bool canStart READ canStart NOTIFY changed)
    Q_PROPERTY(bool hasTroubles READ hasTroubles NOTIFY changed)
    Q_PROPERTY(QString partialText READ partialText NOTIFY changed)
    Q_PROPERTY(bool isAwaited READ isAwaited NOTIFY changed)
    Q_PROPERTY(bool isProving READ isProving NOTIFY changed)
    Q_PROPERTY(double fraction READ fraction NOTIFY changed)
    Q_PROPERTY(QString progressText READ progressText NOTIFY changed)

  public:
    // The model must outlive it.
    explicit ProofStatus(CorvaneViewModel& model, QObject* parent = nullptr);

    // What is looked at, and its scope; unknown figures show nothing.
    void show(const DeletionSafety& safety, const ProofScope& scope, bool isKnown);

    // Each with `symbol`, `tone` and `text`; what stands against mail comes last. Empty where nothing is
    // archived.
    [[nodiscard]] const QVariantList& items() const { return items_; }

    // Something is archived and wasn't compared yet.
    [[nodiscard]] bool canStart() const { return notLookedAt_ > 0 && !isProving(); }

    // Some of what is looked at has a reason why it doesn't count as archived.
    [[nodiscard]] bool hasTroubles() const { return hasTroubles_; }

    // There are archived mails, and their figures aren't known yet: the line keeps its room for them.
    [[nodiscard]] bool isAwaited() const;

    // Of the mail that Mail holds in part; empty without any.
    [[nodiscard]] QString partialText() const;

    [[nodiscard]] bool isProving() const { return model_.archiving().proof.isProving(); }

    [[nodiscard]] double fraction() const;
    [[nodiscard]] QString progressText() const;

    // Compares everything that is archived and not proven yet, whatever is looked at.
    Q_INVOKABLE void start() { model_.archiving().proof.prove({}); }

    Q_INVOKABLE void cancel() { model_.archiving().proof.cancel(); }

  Q_SIGNALS:
    void changed();

  private:
    void updateItems();

    CorvaneViewModel& model_;
    DeletionSafety safety_;
    bool isKnown_ = false;
    QVariantList items_;
    std::int64_t notLookedAt_ = 0;
    std::int64_t partial_ = 0;
    bool hasTroubles_ = false;
    AwayProofCount away_; // of what is looked at
};

} // namespace corvane
