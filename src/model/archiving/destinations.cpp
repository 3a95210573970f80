#include "model/archiving/destinations.h"

#include <chrono>
#include <system_error>

#include <fmt/format.h>

#include "locations/known_locations.h"
#include "locations/places/cloud_providers.h"
#include "locations/places/destination_rules.h"
#include "platform/files/writing/durable_file.h"
#include "platform/paths.h"
#include "records/logs/console_log.h"
#include "records/stores/settings_keys.h"

namespace corvane {

namespace {

constexpr std::chrono::seconds lookAgainPause(2);

struct PrepareJob {
    const platform::Platform& platform;
    platform::FileLayer& files;
    std::string root;
    ArchiveDestinations::Folder folder;
    std::string mailRoot;
};

void makeFolder(const PrepareJob& job, const TaskHandle& task) {
    if (job.folder == ArchiveDestinations::Folder::left) return;
    consoleLine("[HangTrace] setTransferDestination createDirectory begin(bg)");
    PlaceLooks looks(job.platform, job.files, task.stopToken());
    // A folder that can't be made shows in its facts and in the run.
    looks.ask<std::error_code>(job.root, [root = job.root, mailRoot = job.mailRoot](PlaceLook& look) {
        if (refusalInMail(root, mailRoot)) return std::make_error_code(std::errc::operation_not_permitted);
        return platform::createDirectories(look.files(), root);
    });
    consoleLine("[HangTrace] setTransferDestination createDirectory end(bg)");
}

struct FactsJob {
    const platform::Platform& platform;
    platform::FileLayer& files;
    std::optional<std::string> destination;
    std::vector<std::string> known;
};

DestinationFacts factsOf(const FactsJob& job, const TaskHandle& task) {
    PlaceLooks looks(job.platform, job.files, task.stopToken());
    return lookAtDestination(looks, job.platform, job.destination, job.known);
}

} // namespace

ArchiveDestinations::ArchiveDestinations(ModelContext& context, QObject* parent)
  : QObject(parent)
  , context_(context)
  , prepareTask_(context.tasks)
  , factsTask_(context.tasks) {
    lookAgain_.setSingleShot(true);
    lookAgain_.setInterval(lookAgainPause);
    connect(&lookAgain_, &QTimer::timeout, this, &ArchiveDestinations::refreshFacts);
    const std::string stored = context.settings.text(transferDestinationKey).value_or("");
    if (!stored.empty()) {
        destination_ = platform::canonicalPath(stored);
        facts_.cloudName = cloudProviderName(*destination_);
        rememberLocation(context.settings, *destination_);
    }
    refreshFacts();
}

void ArchiveDestinations::setTransferDestination(const std::string& path, Folder folder) {
    const std::string root = platform::canonicalPath(path);
    consoleLine(fmt::format("[HangTrace] setTransferDestination begin {}", root));
    destination_ = root;
    context_.settings.setText(transferDestinationKey, root);
    rememberLocation(context_.settings, root);
    unforgetLocation(context_.settings, root);
    DestinationFacts known;
    known.cloudName = cloudProviderName(root);
    known.rememberedManualDestinations = facts_.rememberedManualDestinations;
    factsTask_.cancel();
    prepareTask_.start(
        TaskPriority::userInitiated,
        PrepareJob{context_.platform, context_.support.files(), root, folder, context_.mailRootPath},
        &makeFolder, [this] {
            refreshFacts();
            Q_EMIT destinationPrepared();
        });
    Q_EMIT destinationChanged();
    setFacts(std::move(known));
    consoleLine("[HangTrace] setTransferDestination end(main)");
}

void ArchiveDestinations::clearTransferDestination() {
    destination_.reset();
    context_.settings.remove(transferDestinationKey);
    prepareTask_.cancel();
    Q_EMIT destinationChanged();
    refreshFacts();
}

void ArchiveDestinations::refreshFacts() {
    factsTask_.start(TaskPriority::utility,
                     FactsJob{context_.platform, context_.support.files(), destination_,
                              knownLocations(context_.settings)},
                     &factsOf, [this](DestinationFacts facts) {
                         setFacts(std::move(facts));
                         // Not every system tells when a folder or a share comes back. Only after an answer:
                         // a disk that hangs is not asked twice.
                         if (!facts_.connected) lookAgain_.start();
                     });
}

void ArchiveDestinations::setFacts(DestinationFacts facts) {
    if (facts_ == facts) return;
    facts_ = std::move(facts);
    Q_EMIT factsChanged();
}

} // namespace corvane
