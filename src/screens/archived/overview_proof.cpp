#include "screens/archived/overview_proof.h"

#include "screens/texts/proof_figures.h"

namespace corvane {

double OverviewProof::fraction() const {
    return screens::proofFraction(proof_.progress());
}

QString OverviewProof::count() const {
    return proof_.progress() ? screens::proofCount(proof_.progress()) + QStringLiteral(" 封") : QString();
}

} // namespace corvane
