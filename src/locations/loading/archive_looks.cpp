#include "locations/loading/archive_looks.h"

#include <cstddef>
#include <utility>

#include <sys/stat.h>

#include "locations/archive_locations.h"
#include "locations/loading/loaded_archives.h"
#include "locations/places/place_looks.h"
#include "platform/paths.h"
#include "records/archive_files/archive_index_file.h"

namespace corvane {

namespace {

using PathsByRoot = std::map<std::string, std::vector<SharedText>, std::less<>>;

struct Look {
    bool isConnected = false;
    std::optional<SourceStamp> index;
    std::shared_ptr<const RootFiles> files; // null unless they were asked for, and somebody could look

    [[nodiscard]] bool hasContent() const { return isConnected && !(files && files->areAllGone()); }
};

PathsByRoot pathsByRoot(const std::vector<ArchivedEntry>& entries) {
    PathsByRoot paths;
    for (const auto& [root, ofRoot] : entriesByRoot(entries)) {
        std::vector<SharedText>& some = paths[std::string(root)];
        some.reserve(ofRoot.size());
        for (const ArchivedEntry& entry : ofRoot) some.push_back(entry.record.emlRelativePath);
    }
    return paths;
}

// `paths`: null where only the connection is asked for.
Look lookAt(PlaceLook& look, const platform::Platform& platform, const std::string& root,
            const std::vector<SharedText>* paths) {
    struct stat status{};
    look.files().stat(root, status); // hangs here, if it does
    Look found;
    found.isConnected = !look.isGivenUp() && isLocationConnected(platform, root);
    if (look.isGivenUp() || paths == nullptr) return found;
    const ArchiveIndexCache cache(platform, CorvaneAppSupport(platform, look.files()));
    found.index = archiveIndexStamp(look.files(), root);
    found.files = archivedFilesAt(look, cache, root, *paths, found.isConnected);
    if (look.isGivenUp()) return {};
    return found;
}

bool isIndexOther(const IndexStates& known, const std::string& root, const Look& look) {
    const auto state = known.find(root);
    return state == known.end() ? look.index.has_value() : look.index != state->second.stamp;
}

} // namespace

std::optional<ArchiveLooks> lookAtArchives(const platform::Platform& platform,
                                           const CorvaneAppSupport& support, const ArchiveLooksInput& input,
                                           const std::stop_token& stop) {
    // A look that hung goes on by itself, so it shares what it needs.
    const auto paths =
        std::make_shared<const PathsByRoot>(input.files ? pathsByRoot(*input.entries) : PathsByRoot());
    PlaceLooks looks(platform, support.files(), stop);
    auto found =
        looks.askAll<Look>(input.roots, [&platform, paths](PlaceLook& look, const std::string& root) {
            const auto ofRoot = paths->find(root);
            return lookAt(look, platform, root, ofRoot == paths->end() ? nullptr : &ofRoot->second);
        });
    if (stop.stop_requested()) return std::nullopt;
    ArchiveLooks result{.connected = {}, .entries = input.entries, .files = input.files};
    ArchivedFiles files;
    for (std::size_t i = 0; i < input.roots.size(); ++i) {
        const std::string& root = input.roots[i];
        Look look = std::move(found[i]).value_or(Look());
        result.connected[root] = look.hasContent();
        if (look.isConnected && look.files && isIndexOther(input.indexes, root, look))
            result.areIndexesOther = true;
        if (look.files) files.byRoot.emplace(root, std::move(look.files));
    }
    if (input.files) result.files = publishedFiles(std::move(files), input.files);
    return result;
}

std::optional<SourceStamp> archiveIndexStamp(platform::FileLayer& files, const std::string& root) {
    struct stat status{};
    if (files.stat(platform::joinPath(root, archiveIndexFileName), status) != 0) return std::nullopt;
    return SourceStamp::of(status);
}

std::shared_ptr<const RootFiles> archivedFilesAt(PlaceLook& look, const ArchiveIndexCache& cache,
                                                 const std::string& root,
                                                 const std::vector<SharedText>& paths, bool isConnected) {
    if (isConnected) {
        struct stat before{};
        struct stat after{};
        const bool wasThere = look.files().stat(root, before) == 0;
        auto files = std::make_shared<const RootFiles>(listArchivedFiles(look, paths, root));
        // The files of a disk that was pulled meanwhile seem to be gone.
        const bool isHere = look.files().stat(root, after) == 0 && after.st_dev == before.st_dev;
        return wasThere && !isHere ? nullptr : files;
    }
    return cache.isRootGone(root) ? std::make_shared<const RootFiles>() : nullptr;
}

} // namespace corvane
