// The banner of the organize home: how far what is looked at is archived, and what that means for the
// originals.
#pragma once

#include <QMetaType>
#include <QString>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

#include "listing/deletion/deletion_safety.h"

namespace corvane {

struct SafetyBanner {
    Q_GADGET
    QML_VALUE_TYPE(safetyBanner)
    Q_PROPERTY(QString kind MEMBER kind CONSTANT)
    Q_PROPERTY(QString symbol MEMBER symbol CONSTANT)
    Q_PROPERTY(QString headline MEMBER headline CONSTANT)
    Q_PROPERTY(QStringList lines MEMBER lines CONSTANT)

  public:
    QString kind; // of the banner control: safe, attention, danger, info; empty for none
    QString symbol;
    QString headline;
    QStringList lines;

    friend bool operator==(const SafetyBanner&, const SafetyBanner&) = default;
};

namespace screens {

// Nothing is called safe but local messages that were all compared with their copy, byte for byte, and not
// before it is known what the server alone has.
SafetyBanner deletionSafetyBanner(const QString& scopeTitle, const DeletionSafety& safety,
                                  bool isServerKnown = true);

// The same with dashes, as long as nothing is known. `reason` is what is waited for.
SafetyBanner unknownSafetyBanner(const QString& scopeTitle, const QString& reason);

// For a list that isn't all of the mail; `failure` is why, empty after a cancelled scan.
SafetyBanner partialListBanner(const QString& failure);

} // namespace screens

} // namespace corvane
