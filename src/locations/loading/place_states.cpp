#include "locations/loading/place_states.h"

#include <cstddef>
#include <optional>

#include <sys/stat.h>

#include "archive/checks/archive_rebuild.h"
#include "locations/archive_locations.h"
#include "locations/loading/archive_index_cache.h"
#include "locations/loading/archived_files.h"
#include "locations/places/place_looks.h"
#include "platform/paths.h"
#include "records/archive_files/archive_index_file.h"

namespace corvane {

namespace {

using Kind = ArchivePlaceState::Kind;

// What stands at a root before anybody opens its index: `connected` for a folder.
Kind standing(PlaceLook& look, const platform::Platform& platform, const std::string& root) {
    switch (filePresence(look.files(), root)) {
    case FilePresence::present:
        // A folder may stand where its disk was.
        return isLocationConnected(platform, root) ? Kind::connected : Kind::unplugged;
    case FilePresence::unknown:
        return Kind::unanswered;
    case FilePresence::absent:
        break;
    }
    const ArchiveIndexCache cache(platform, CorvaneAppSupport(platform, look.files()));
    return cache.isRootGone(root) ? Kind::gone : Kind::unplugged;
}

// Of a folder that the library hasn't read.
ArchivePlaceState withoutLibrary(platform::FileLayer& files, const std::string& root,
                                 const std::stop_token& stop) {
    const FilePresence index = filePresence(files, platform::joinPath(root, archiveIndexFileName));
    if (index == FilePresence::unknown) return {Kind::unanswered, 0};
    const auto need = rebuildNeed(root, stop, files);
    if (need) return {need->isDamaged ? Kind::damagedIndex : Kind::withoutIndex, need->mails};
    return {index == FilePresence::present ? Kind::connected : Kind::unused, 0};
}

} // namespace

std::vector<ArchivePlaceState> lookAtArchivePlaces(const platform::Platform& platform,
                                                   const CorvaneAppSupport& support,
                                                   const std::vector<std::string>& roots,
                                                   const std::set<std::string>& listed,
                                                   const std::stop_token& stop) {
    PlaceLooks looks(platform, support.files(), stop);
    const auto found = looks.askAll<Kind>(roots, [&platform](PlaceLook& look, const std::string& root) {
        return standing(look, platform, root);
    });
    std::vector<ArchivePlaceState> states(roots.size());
    for (std::size_t i = 0; i < roots.size() && !stop.stop_requested(); ++i) {
        states[i].kind = found[i].value_or(Kind::unanswered);
        if (states[i].kind == Kind::connected && !listed.contains(roots[i]))
            states[i] = withoutLibrary(support.files(), roots[i], stop);
    }
    return states;
}

} // namespace corvane
