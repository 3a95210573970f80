#include "screens/texts/proof_figures.h"

#include "screens/texts/shown_figures.h"

namespace corvane::screens {

double proofFraction(const std::optional<ProofProgress>& progress) {
    if (!progress || progress->total == 0) return 0;
    return static_cast<double>(progress->completed) / static_cast<double>(progress->total);
}

QString proofCount(const std::optional<ProofProgress>& progress) {
    if (!progress) return {};
    return QStringLiteral("%1 / %2").arg(shownCount(progress->completed), shownCount(progress->total));
}

} // namespace corvane::screens
