#include "screens/archived/overview_proof.h"

#include "screens/texts/shown_figures.h"

namespace corvane {

double OverviewProof::fraction() const {
    const auto& progress = proof_.progress();
    if (!progress || progress->total == 0) return 0;
    return static_cast<double>(progress->completed) / static_cast<double>(progress->total);
}

QString OverviewProof::count() const {
    const auto& progress = proof_.progress();
    if (!progress) return {};
    return QStringLiteral("%1 / %2 封")
        .arg(screens::shownCount(progress->completed), screens::shownCount(progress->total));
}

} // namespace corvane
