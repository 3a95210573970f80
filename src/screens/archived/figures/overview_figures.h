// What the overview of archived mail adds up to: the figure of space that may be freed with what is to be
// done next, and what the archive holds. Pure functions of what is known.
#pragma once

#include <optional>
#include <string>
#include <utility>

#include <QMetaType>
#include <QString>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

#include "library/overview/archived_overview.h"
#include "model/archiving/proof/proof_job.h"
#include "model/library/overview/overview_state.h"
#include "records/values.h"
#include "screens/archived/figures/year_status.h"

namespace corvane {

struct OverviewHero {
    Q_GADGET
    QML_VALUE_TYPE(overviewHero)
    Q_PROPERTY(QString kind MEMBER kind CONSTANT)
    Q_PROPERTY(QString symbol MEMBER symbol CONSTANT)
    Q_PROPERTY(QString title MEMBER title CONSTANT)
    Q_PROPERTY(QString figure MEMBER figure CONSTANT)
    Q_PROPERTY(QString count MEMBER count CONSTANT)
    Q_PROPERTY(QString line MEMBER line CONSTANT)
    Q_PROPERTY(QString note MEMBER note CONSTANT)
    Q_PROPERTY(QString action MEMBER action CONSTANT)
    Q_PROPERTY(QString actionTitle MEMBER actionTitle CONSTANT)

  public:
    QString kind; // "safe" only for originals that were all compared and looked up in this run of the program
    QString symbol;
    QString title;
    QString figure;
    QString count;
    QString line;
    QString note;
    QString action; // "prove", "update", "restore", or empty
    QString actionTitle;

    friend bool operator==(const OverviewHero&, const OverviewHero&) = default;
};

// What the archived mail divides into, by what may be done with the originals.
struct ArchivedShares {
    MailSum total;
    MailSum freeable;
    MailSum awaiting; // there, and not compared yet
    MailSum blocked;  // there, in a year with mail that isn't archived
    MailSum removed;
    MailSum pending; // to be confirmed, with what stands in such years
    MailSum undated;
    MailSum repeated; // the same mail in a further archive

    friend bool operator==(const ArchivedShares&, const ArchivedShares&) = default;
};

// All that the hero is made of.
struct OverviewHeroInput {
    OriginalKnowledge knowledge = OriginalKnowledge::loading;
    ArchivedShares shares;
    std::optional<Date> checkedAt{};
    bool isEarlierCheck = false; // of an earlier run of the program, or asked again in vain
    QString failure{};           // why Mail couldn't be asked
    QString away{};              // what is proven by archived files that aren't here
};

namespace screens {

// Of one account, and of all.
ArchivedShares archivedShares(const ArchivedOverviewGroup& group, const ArchivedOverviewStats::Group& stats);
ArchivedShares archivedShares(const ArchivedOverview& overview);

// An account of the overview and its figures; null where it has none of this key, or is null itself.
std::pair<const ArchivedOverviewGroup*, const ArchivedOverviewStats::Group*>
groupOfKey(const SharedOverview& overview, const std::string& key);

OverviewHero overviewHero(const OverviewHeroInput& input);

// The parts of the share bar and its legend, each with `series`, `label`, `value`, `text` and `size`.
QVariantList holdingParts(const ArchivedShares& shares, bool isKnown);

// "上次对照 2025-11-20 21:46"; empty without a check.
QString checkedText(const std::optional<Date>& checkedAt);

} // namespace screens

} // namespace corvane
