#include "cli/mails/mail_file_state.h"

#include <string>

#include "locations/archive_locations.h"
#include "locations/loading/archive_index_cache.h"
#include "locations/loading/archived_files.h"
#include "locations/places/place_looks.h"
#include "platform/files/cloud_placeholder.h"
#include "platform/paths.h"

namespace corvane::cli {

namespace {

MailFileState lookAtFile(PlaceLook& look, const platform::Platform& platform, const std::string& root,
                         const std::string& path) {
    if (!isLocationConnected(platform, root))
        return {.isGone =
                    ArchiveIndexCache(platform, CorvaneAppSupport(platform, look.files())).isRootGone(root)};
    const FilePresence file = filePresence(look.files(), path);
    if (file == FilePresence::present) return {.isAvailable = !platform.isCloudPlaceholder(path)};
    return {.isGone = isArchiveFileGone(look.files(), path)};
}

} // namespace

MailFileState fileStateOf(Session& session, const ArchivedEntry& entry) {
    if (!platform::isSafeRelativePath(entry.record.emlRelativePath)) return {.isGone = true};
    const std::string root = entry.locationRootPath.str();
    const std::string path = platform::joinPath(root, entry.record.emlRelativePath.view());
    PlaceLooks looks(session.platform(), session.context().support.files(), {});
    const auto answer =
        looks.ask<MailFileState>(root, [root, path, &platform = session.platform()](PlaceLook& look) {
            return lookAtFile(look, platform, root, path);
        });
    return answer.value_or(MailFileState());
}

} // namespace corvane::cli
