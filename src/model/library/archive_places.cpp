#include "model/library/archive_places.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <map>
#include <set>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "locations/archive_locations.h"
#include "locations/known_locations.h"
#include "locations/place_names.h"
#include "records/stores/settings_keys.h"
#include "records/timestamps.h"

namespace corvane {

namespace {

// The settings aren't written for less.
constexpr std::chrono::minutes seenStep(10);

struct MailSum {
    std::int64_t count = 0;
    std::int64_t bytes = 0;
};

std::unordered_map<std::string_view, MailSum> sumsByRoot(const std::vector<ArchivedEntry>& entries) {
    std::unordered_map<std::string_view, MailSum> sums;
    for (const ArchivedEntry& entry : entries) {
        MailSum& sum = sums[entry.locationRootPath.view()];
        ++sum.count;
        sum.bytes += entry.record.sizeBytes;
    }
    return sums;
}

int rankOf(const ArchivePlace& place) {
    using enum ArchivePlaceState::Kind;
    if (place.isDefault) return 0;
    if (place.state.kind == gone) return 3;
    return place.state.kind == unplugged || place.state.kind == unanswered ? 2 : 1;
}

bool hasNoFile(const ArchivedFiles& files, const std::string& root) {
    const auto found = files.byRoot.find(root);
    return found != files.byRoot.end() && found->second->there.empty() && found->second->inCloud.empty() &&
           found->second->unknown.empty();
}

} // namespace

struct ArchivePlaces::Job {
    const platform::Platform& platform;
    CorvaneAppSupport support;
    std::vector<std::string> roots;
    std::vector<ArchiveLocation> locations;
    std::optional<std::string> destination;
    std::map<std::string, std::string> lastSeen;
    SharedEntryList entries;
    SharedArchivedFiles files;
};

ArchivePlaces::ArchivePlaces(ModelContext& context, LibraryLoader& library, DestinationProvider destination,
                             QObject* parent)
  : QObject(parent)
  , context_(context)
  , library_(library)
  , destination_(std::move(destination))
  , lookTask_(context.tasks) {
    connect(&library, &LibraryLoader::loadFinished, this, &ArchivePlaces::rememberSeen);
}

void ArchivePlaces::refresh() {
    RootList roots;
    const std::optional<std::string> destination = destination_();
    if (destination) roots.add(*destination);
    for (const ArchiveLocation& location : library_.archiveLocations()) roots.add(location.rootPath);
    for (const std::string& root : knownLocations(context_.settings)) roots.add(root);
    Job job{
        .platform = context_.platform,
        .support = context_.support,
        .roots = roots.roots(),
        .locations = library_.archiveLocations(),
        .destination = destination,
        .lastSeen =
            context_.settings.textMap(locationsLastSeenKey).value_or(std::map<std::string, std::string>()),
        .entries = library_.archivedEntries(),
        .files = library_.archivedFiles()};
    lookTask_.start(TaskPriority::userInitiated, std::move(job), &ArchivePlaces::look,
                    [this](std::vector<ArchivePlace> places) {
                        places_ = std::move(places);
                        hasLooked_ = true;
                        Q_EMIT placesChanged();
                    });
}

std::vector<ArchivePlace> ArchivePlaces::look(const Job& job, const TaskHandle& task) {
    const auto sums = sumsByRoot(*job.entries);
    std::set<std::string> listed;
    for (const auto& [root, sum] : sums) listed.emplace(root);
    const auto states = lookAtArchivePlaces(job.platform, job.support, job.roots, listed, task.stopToken());
    std::vector<ArchivePlace> places;
    for (std::size_t i = 0; i < job.roots.size(); ++i) {
        const std::string& root = job.roots[i];
        ArchivePlace place{.root = root, .name = locationDisplayName(job.platform, root), .state = states[i]};
        const bool isThere = states[i].kind != ArchivePlaceState::Kind::unplugged &&
                             states[i].kind != ArchivePlaceState::Kind::gone &&
                             states[i].kind != ArchivePlaceState::Kind::unanswered;
        const auto known = std::ranges::find(job.locations, root, &ArchiveLocation::rootPath);
        place.kind = known != job.locations.end() ? known->kind : locationKind(job.platform, root, isThere);
        place.isDefault = root == job.destination;
        place.areFilesGone = isThere && hasNoFile(*job.files, root);
        if (const auto sum = sums.find(root); sum != sums.end()) {
            place.count = sum->second.count;
            place.bytes = sum->second.bytes;
        }
        if (const auto seen = job.lastSeen.find(root); seen != job.lastSeen.end())
            place.lastSeen = parseTimestamp(seen->second);
        places.push_back(std::move(place));
    }
    std::ranges::stable_sort(places, {}, &rankOf);
    return places;
}

void ArchivePlaces::rememberSeen() {
    const auto stored = context_.settings.textMap(locationsLastSeenKey);
    std::map<std::string, std::string> seen;
    const Date now = currentTimestamp();
    bool isDue = false;
    for (const std::string& root : knownLocations(context_.settings)) {
        const auto earlier =
            stored ? stored->find(root) : std::map<std::string, std::string>::const_iterator();
        const bool wasSeen = stored && earlier != stored->end();
        if (wasSeen) seen[root] = earlier->second;
        const ArchiveLocation* location = library_.location(root);
        if (location == nullptr || !location->isConnected) continue;
        const auto at = wasSeen ? parseTimestamp(earlier->second) : std::nullopt;
        if (at && *at <= now && now - *at < seenStep) continue;
        seen[root] = formatTimestamp(now);
        isDue = true;
    }
    if (isDue) context_.settings.setTextMap(locationsLastSeenKey, seen);
}

} // namespace corvane
