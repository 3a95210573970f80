#include "model/library/config_backup_flow.h"

#include <cerrno>
#include <cstddef>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <sys/stat.h>

#include "locations/known_locations.h"
#include "locations/loading/archive_discovery.h"
#include "locations/places/destination_rules.h"
#include "locations/places/place_looks.h"
#include "platform/files/writing/durable_file.h"
#include "platform/files/writing/leftovers.h"
#include "platform/paths.h"
#include "records/logs/console_log.h"
#include "records/stores/settings_keys.h"
#include "records/texts/error_reasons.h"
#include "records/timestamps.h"

namespace corvane {

namespace {

struct FoldersJob {
    const platform::Platform& platform;
    platform::FileLayer& files;
    std::vector<std::string> roots;
    std::string content;
    std::string mailRoot;
};

void writeToFolders(const FoldersJob& job, const TaskHandle& task) {
    PlaceLooks looks(job.platform, job.files, task.stopToken());
    looks.askAll<bool>(job.roots, [job](PlaceLook& look, const std::string& root) {
        // Somebody else's settings may name anything as an archive.
        if (refusalInMail(root, job.mailRoot)) return false;
        look.beginStep();
        consoleLine(fmt::format("[HangTrace] configBackup write probe(bg) {}", root));
        struct stat status{};
        if (look.files().stat(root, status) != 0 || !S_ISDIR(status.st_mode)) return false;
        look.beginStep();
        const std::string path = platform::joinPath(root, configBackupFileName);
        return !platform::writeFileAtomically(look.files(), path, job.content);
    });
    consoleLine("[HangTrace] configBackup writes done(bg)");
}

struct OfferJob {
    const platform::Platform& platform;
    platform::FileLayer& files;
};

struct FoundBackup {
    CorvaneConfigBackup backup;
    std::string root;
};

// The newest copy; absent without any.
std::optional<FoundBackup> findBackup(const OfferJob& job, const TaskHandle& task) {
    PlaceLooks looks(job.platform, job.files, task.stopToken());
    using Backup = std::optional<CorvaneConfigBackup>;
    const std::vector<std::string> roots = discoverArchiveRoots(job.platform, looks);
    const auto found = looks.askAll<Backup>(roots, [](PlaceLook& look, const std::string& root) -> Backup {
        auto backup = readConfigBackup(look.files(), platform::joinPath(root, configBackupFileName));
        return backup ? Backup(std::move(*backup)) : std::nullopt;
    });
    std::optional<FoundBackup> newest;
    for (std::size_t i = 0; i < roots.size(); ++i) {
        const Backup copy = found[i].value_or(std::nullopt);
        if (copy && (!newest || copy->exportedAt > newest->backup.exportedAt)) newest = {*copy, roots[i]};
    }
    return newest;
}

struct ExportJob {
    const platform::Platform& platform;
    platform::FileLayer& files;
    std::string path;
    std::string content;
    std::string mailRoot;
};

// A device or a pipe: what is written atomically would take its place.
bool isNoPlainFile(platform::FileLayer& files, const std::string& path) {
    struct stat status{};
    if (files.stat(path, status) != 0) return false;
    const auto kind = status.st_mode & S_IFMT;
    return kind == S_IFCHR || kind == S_IFBLK || kind == S_IFIFO || kind == S_IFSOCK;
}

// Why the file couldn't be written, for the user; empty where it was.
std::string exportObstacle(const ExportJob& job, const TaskHandle& task) {
    PlaceLooks looks(job.platform, job.files, task.stopToken());
    const auto obstacle = looks.ask<std::string>(job.path, [job](PlaceLook& look) {
        if (const auto refusal = refusalInMail(job.path, job.mailRoot)) return *refusal;
        look.beginStep();
        if (isNoPlainFile(look.files(), job.path)) return systemErrorReason(EEXIST);
        const int error = platform::writeFileAtomically(look.files(), job.path, job.content).value();
        return error == 0 ? std::string() : systemErrorReason(error);
    });
    // What killed exports left; that it is slow, or fails, is no obstacle.
    if (obstacle == std::string())
        looks.ask<bool>(job.path, [folder = std::string(platform::parentPath(job.path))](PlaceLook&) {
            platform::removeUnfinishedFiles(folder);
            return true;
        });
    return obstacle.value_or(systemErrorReason(ETIMEDOUT));
}

struct ImportJob {
    platform::FileLayer& files;
    std::string path;
};

} // namespace

ConfigBackupFlow::ConfigBackupFlow(ModelContext& context, QObject* parent)
  : QObject(parent)
  , context_(context)
  , isFreshStart_(isUntouched())
  , configBackupTask_(context.tasks)
  , offerTask_(context.tasks)
  , fileTask_(context.tasks) {}

bool ConfigBackupFlow::isUntouched() const {
    const platform::SettingsStore& settings = context_.settings;
    return knownLocations(settings).empty() &&
           settings.textMap(archiveAccountMergeRulesKey)
               .value_or(std::map<std::string, std::string>())
               .empty() &&
           settings.text(transferDestinationKey).value_or("").empty();
}

CorvaneConfigBackup ConfigBackupFlow::currentConfigBackup() const {
    const platform::SettingsStore& settings = context_.settings;
    CorvaneConfigBackup backup;
    backup.exportedAt = currentTimestamp();
    backup.destinationPath = settings.text(transferDestinationKey);
    backup.knownLocationRoots = knownLocations(settings);
    backup.accountMergeRules =
        settings.textMap(archiveAccountMergeRulesKey).value_or(backup.accountMergeRules);
    backup.selectedAccountPrefixes =
        settings.textList(selectedAccountPrefixesKey).value_or(backup.selectedAccountPrefixes);
    return backup;
}

void ConfigBackupFlow::writeConfigBackupToArchiveFolders() {
    configBackupTask_.start(TaskPriority::utility,
                            FoldersJob{context_.platform, context_.support.files(),
                                       knownLocations(context_.settings),
                                       encodeConfigBackup(currentConfigBackup()), context_.mailRootPath},
                            &writeToFolders);
}

void ConfigBackupFlow::offerConfigBackupOnFreshLaunch() {
    // What a load of the library has found since the start doesn't count; what the user did does.
    const bool isChosen = !context_.settings.text(transferDestinationKey).value_or("").empty();
    if (!isFreshStart_ || isChosen) return;
    offerTask_.start(TaskPriority::utility, OfferJob{context_.platform, context_.support.files()},
                     &findBackup, [this](FoundBackup found) {
                         pendingRestore_ = std::move(found.backup);
                         restoreRoot_ = std::move(found.root);
                         Q_EMIT changed();
                     });
}

void ConfigBackupFlow::exportConfig(const std::string& path) {
    begin();
    fileTask_.start(TaskPriority::userInitiated,
                    ExportJob{context_.platform, context_.support.files(), path,
                              encodeConfigBackup(currentConfigBackup()), context_.mailRootPath},
                    &exportObstacle, [this, path](const std::string& obstacle) {
                        if (!obstacle.empty())
                            return end(fmt::format("无法导出配置到「{}」：{}", path, obstacle), true);
                        end(fmt::format("配置已导出到「{}」。\n邮件本体不在此文件中（仍在你的归档位置）。",
                                        platform::lastPathComponent(path)),
                            false);
                    });
}

void ConfigBackupFlow::importConfig(const std::string& path) {
    begin();
    fileTask_.start(
        TaskPriority::userInitiated, ImportJob{context_.support.files(), path},
        [](const ImportJob& job, const TaskHandle&) { return readConfigBackup(job.files, job.path); },
        [this](std::expected<CorvaneConfigBackup, std::string> read) {
            if (!read) return end(fmt::format("无法读取该备份文件：{}", read.error()), true);
            pendingImport_ = std::move(*read);
            Q_EMIT changed();
        });
}

void ConfigBackupFlow::begin() {
    resultMessage_.reset();
    pendingImport_.reset();
    hasFailed_ = false;
    Q_EMIT changed();
}

void ConfigBackupFlow::end(std::string message, bool hasFailed) {
    resultMessage_ = std::move(message);
    hasFailed_ = hasFailed;
    Q_EMIT changed();
}

void ConfigBackupFlow::dismiss() {
    pendingImport_.reset();
    pendingRestore_.reset();
    Q_EMIT changed();
}

void ConfigBackupFlow::dismissResult() {
    resultMessage_.reset();
    Q_EMIT changed();
}

bool ConfigBackupFlow::isUsablePlace(std::string_view path) {
    return path.starts_with('/') && path.find('\0') == std::string_view::npos;
}

void ConfigBackupFlow::adoptLocations(const CorvaneConfigBackup& backup) {
    RootList known;
    for (const std::string& root : knownLocations(context_.settings)) known.add(root);
    for (const std::string& root : backup.knownLocationRoots) {
        if (!isUsablePlace(root)) continue;
        known.add(root);
        unforgetLocation(context_.settings, root);
    }
    setKnownLocations(context_.settings, known.roots());
    const bool isRestore = pendingRestore_ == backup;
    dismiss();
    end(isRestore ? "已从归档里的备份恢复配置。" : "已从备份恢复配置。", false);
}

} // namespace corvane
