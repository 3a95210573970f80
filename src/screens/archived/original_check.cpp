#include "screens/archived/original_check.h"

#include <utility>

#include "screens/archived/figures/overview_figures.h"

namespace corvane {

OriginalCheck::OriginalCheck(CorvaneViewModel& model, QObject* parent)
  : QObject(parent)
  , model_(model) {
    connect(&model.library().loader, &LibraryLoader::looksEnded, this, [this] {
        if (std::exchange(looksAtArchives_, false)) Q_EMIT changed();
    });
}

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
    if (!canRun()) return;
    model_.lookAtArchives();
    looksAtArchives_ = model_.library().loader.isLooking();
    model_.library().presence.refreshArchivedOriginalPresenceIfNeeded(true);
}

} // namespace corvane
