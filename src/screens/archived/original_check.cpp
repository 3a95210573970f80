#include "screens/archived/original_check.h"

#include "screens/archived/figures/overview_figures.h"

namespace corvane {

QString OriginalCheck::doneText() const {
    return isRunning() ? QString() : screens::checkedText(model_.library().presence.presence()->checkedAt);
}

bool OriginalCheck::isEarlier() const {
    const PresenceFlow& presence = model_.library().presence;
    return presence.presence()->isOfEarlierRun || presence.questionFailure().has_value();
}

bool OriginalCheck::canRun() const {
    return !model_.library().loader.archivedEntries()->empty() && model_.library().overview.overview() &&
           !isRunning();
}

void OriginalCheck::run() {
    if (canRun()) model_.library().presence.refreshArchivedOriginalPresenceIfNeeded(true);
}

} // namespace corvane
