#include "model/destinations.h"

#include <algorithm>

#include <fmt/format.h>

#include "model/cloud_providers.h"
#include "model/settings_keys.h"
#include "platform/directory.h"
#include "platform/durable_file.h"
#include "records/console_log.h"
#include "text/case.h"

namespace corvane {

namespace {

bool isManualPlace(const platform::Platform& platform, const std::string& path) {
    const bool isCloud = path.find("Mobile Documents") != std::string::npos ||
                         path.find("Library/CloudStorage") != std::string::npos;
    return !isCloud && !platform.removableMountPoint(path) && platform::fileExists(path);
}

bool isOnInternalDisk(const platform::Platform& platform, const std::string& path) {
    const auto volume = platform.volumeOf(path);
    if (!volume) return true;
    if (volume->removable.value_or(false) || volume->ejectable.value_or(false)) return false;
    return volume->internal.value_or(true);
}

void traceHang(std::string_view step) {
    consoleLine(fmt::format("[HangTrace] setTransferDestination {}", step));
}

} // namespace

std::string shownFileSystemName(std::string_view typeName) {
    if (typeName == "msdos") return "FAT32";
    if (typeName == "exfat") return "exFAT";
    if (typeName == "apfs") return "APFS";
    if (typeName == "hfs") return "Mac OS 扩展";
    return text::asciiUppercased(typeName);
}

DestinationFacts computeDestinationFacts(const platform::Platform& platform,
                                         const std::optional<std::string>& destination,
                                         const std::vector<std::string>& knownRoots) {
    DestinationFacts facts;
    std::copy_if(knownRoots.begin(), knownRoots.end(), std::back_inserter(facts.rememberedManualDestinations),
                 [&](const std::string& path) { return isManualPlace(platform, path); });
    if (!destination) return facts;
    facts.connected = platform::fileExists(*destination);
    facts.cloudName = cloudProviderName(*destination);
    const std::string resolved = platform::resolvedPath(*destination).value_or(*destination);
    facts.inSymlinkContainer = resolved.find("/.symlinks/") != std::string::npos;
    if (!facts.connected) return facts;
    if (const auto type = platform.fileSystemTypeName(*destination))
        facts.filesystemName = shownFileSystemName(*type);
    facts.onInternalDisk = isOnInternalDisk(platform, *destination);
    return facts;
}

ArchiveDestinations::ArchiveDestinations(ModelContext& context, QObject* parent)
  : QObject(parent)
  , context_(context)
  , prepareTask_(context.tasks)
  , factsTask_(context.tasks) {
    const auto stored = context.settings.text(transferDestinationKey);
    if (!stored || stored->empty()) return;
    destination_ = *stored;
    rememberLocation(*stored);
}

std::vector<std::string> ArchiveDestinations::knownLocationRoots() const {
    return context_.settings.textList(knownLocationsKey).value_or(std::vector<std::string>());
}

void ArchiveDestinations::rememberLocation(const std::string& path) {
    std::vector<std::string> roots = knownLocationRoots();
    if (std::find(roots.begin(), roots.end(), path) != roots.end()) return;
    roots.push_back(path);
    context_.settings.setTextList(knownLocationsKey, roots);
}

void ArchiveDestinations::setTransferDestination(const std::string& path) {
    traceHang("begin " + path);
    destination_ = path;
    context_.settings.setText(transferDestinationKey, path);
    rememberLocation(path);
    Q_EMIT destinationChanged();
    prepareTask_.start(TaskPriority::userInitiated,
                       [this, path, &files = context_.support.files()](const TaskHandle& task) {
                           traceHang("createDirectory begin(bg)");
                           // A folder that can't be created shows up in the run itself.
                           platform::createDirectories(files, path);
                           traceHang("createDirectory end(bg)");
                           task.onMain([this] {
                               refreshFacts();
                               Q_EMIT destinationPrepared();
                           });
                       });
    traceHang("end(main)");
}

void ArchiveDestinations::refreshFacts() {
    factsTask_.start(TaskPriority::utility, [this, destination = destination_, roots = knownLocationRoots(),
                                             &platform = context_.platform](const TaskHandle& task) {
        task.onMain([this, facts = computeDestinationFacts(platform, destination, roots)] {
            if (facts == facts_) return;
            facts_ = facts;
            Q_EMIT factsChanged();
        });
    });
}

} // namespace corvane
