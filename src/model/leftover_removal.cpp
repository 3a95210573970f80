#include "model/leftover_removal.h"

#include <string>

#include "archive/attachments/attachment_cache.h"
#include "platform/files/writing/leftovers.h"
#include "platform/paths.h"

namespace corvane {

namespace {

struct LeftoverPlaces {
    CorvaneAppSupport support;
    std::string settingsFolder;
    std::string temporaryFolder;
};

void removeLeftovers(const LeftoverPlaces& places, const TaskHandle& task) {
    places.support.removeUnfinishedFiles();
    platform::removeUnfinishedFiles(places.settingsFolder);
    if (task.isCancelled()) return;
    platform::removeTemporaryFiles(places.temporaryFolder);
    archive::AttachmentCache::removeLeftovers(places.temporaryFolder);
}

} // namespace

void LeftoverRemoval::start() {
    task_.start(TaskPriority::utility,
                LeftoverPlaces{context_.support, std::string(platform::parentPath(context_.settings.path())),
                               context_.platform.temporaryDirectory()},
                &removeLeftovers);
}

} // namespace corvane
