// The figures of the organize home as QML shows them: what is archived of the mail that is looked at, by year
// and in all, and what of it is ticked.
#pragma once

#include <QMetaType>
#include <QString>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

#include "screens/home/safety_banner.h"

namespace corvane {

struct OrganizeFigures {
    Q_GADGET
    QML_VALUE_TYPE(organizeFigures)
    Q_PROPERTY(QString organizeRangeTitle MEMBER organizeRangeTitle CONSTANT)
    Q_PROPERTY(corvane::SafetyBanner banner MEMBER banner CONSTANT)
    Q_PROPERTY(QVariantList years MEMBER years CONSTANT)
    Q_PROPERTY(QVariantList sums MEMBER sums CONSTANT)
    Q_PROPERTY(int scopeYear MEMBER scopeYear CONSTANT)
    Q_PROPERTY(bool isNarrowed MEMBER isNarrowed CONSTANT)

  public:
    bool isKnown = false; // what is archived; before that only the candidates are
    QString
        organizeRangeTitle; // of the scope: "全部年份", "2021 年", with the account where one is looked at
    SafetyBanner banner;
    QVariantList years;
    QVariantList sums; // the three series in all, for legend and share bar
    int scopeYear = 0; // 0 for all
    bool isNarrowed = false;
};

struct OrganizeSelectionItem {
    Q_GADGET
    QML_VALUE_TYPE(organizeSelectionItem)
    Q_PROPERTY(QString title MEMBER title CONSTANT)
    Q_PROPERTY(QString line MEMBER line CONSTANT)
    Q_PROPERTY(QString organizeSelectionSummary MEMBER organizeSelectionSummary CONSTANT)
    Q_PROPERTY(QString organizePrimaryTitle MEMBER organizePrimaryTitle CONSTANT)
    Q_PROPERTY(bool organizePrimaryDisabled MEMBER organizePrimaryDisabled CONSTANT)

  public:
    QString title;                    // "已选 462.8 MB"
    QString line;                     // the same with the count
    QString organizeSelectionSummary; // without ticks what there is to archive
    QString organizePrimaryTitle;
    bool organizePrimaryDisabled = true;
};

} // namespace corvane
