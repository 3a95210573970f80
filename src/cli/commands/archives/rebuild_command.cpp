#include <exception>
#include <memory>
#include <stop_token>
#include <string>
#include <utility>

#include <fmt/format.h>

#include "archive/attachments/listed_names.h"
#include "archive/checks/archive_rebuild.h"
#include "archive/checks/scanned_copies.h"
#include "cli/commands/archives/verified_readings.h"
#include "cli/commands/commands.h"
#include "cli/console/output.h"
#include "cli/console/progress_line.h"
#include "cli/exit_status.h"
#include "model/owned_platform.h"
#include "platform/paths.h"
#include "platform/platform.h"
#include "records/logs/console_log.h"
#include "records/stores/app_support.h"
#include "records/stores/proof_store.h"
#include "records/stores/scan_cache_store.h"

namespace corvane::cli {

namespace {

struct RebuildCommandOptions {
    std::string root;
    bool isDryRun = false;
};

void printJson(const ArchiveRebuild& rebuild) {
    JsonDocument document;
    document.object([&] {
        document.member("adopted", rebuild.adopted);
        document.member("records", rebuild.records);
        document.objects("failures", rebuild.failures, [&](const ArchiveRebuild::Failure& failure) {
            document.member("path", failure.path);
            document.member("reason", failure.reason);
        });
    });
    document.print();
}

void printReadable(const ArchiveRebuild& rebuild, bool isDryRun) {
    printText(fmt::format("{} {} 封，索引{} {} 封", isDryRun ? "可以收入" : "已收入", rebuild.adopted,
                          isDryRun ? "将有" : "现有", rebuild.records));
    for (const ArchiveRebuild::Failure& failure : rebuild.failures)
        printText(fmt::format("未收入：{}：{}", failure.path, failure.reason));
}

// Nothing where it can't be had: then the mail's headers have to do.
archive::ScannedMail lastScan(const platform::Platform& system) {
    const CorvaneAppSupport support(system);
    try {
        auto cache = MailScanCacheStore(support).load();
        if (!cache) return {};
        return {std::make_shared<const MessageList>(std::move(cache->messages)), ProofStore(support).load()};
    } catch (const std::exception& error) {
        consoleLine(fmt::format("[rebuild] {}", error.what()));
        return {};
    }
}

int runRebuild(const RebuildCommandOptions& command, const CommonOptions& common) {
    ProgressLine line;
    std::stop_source stop;
    const OwnedPlatform system = makeOwnedPlatform(common.home);
    RebuildOptions options;
    options.isDryRun = command.isDryRun;
    options.scanned = lastScan(*system);
    options.attachmentNames = archive::workerListedNames(*system);
    options.markHidden = [&](const std::string& path) { system->markHidden(path); };
    options.progress = [&](std::size_t read, std::size_t all) {
        if (wasInterrupted()) stop.request_stop();
        line.show(fmt::format("已读取 {} / {}", read, all), double(read) / double(all));
    };
    ArchiveRebuild rebuild =
        rebuildArchive(platform::standardizedPath(command.root), options, stop.get_token());
    if (rebuild.wasCancelled) throw Interrupted();
    if (!command.isDryRun) keepReadings(*system, command.root, std::move(rebuild.readings));
    if (rebuild.withUnknownAttachments > 0)
        messageLine(
            fmt::format("{} 封邮件的附件名称没能读出，附件仍在邮件里。", rebuild.withUnknownAttachments));
    if (common.json)
        printJson(rebuild);
    else
        printReadable(rebuild, command.isDryRun);
    return statusOf(rebuild);
}

} // namespace

void addRebuildCommand(CommandSet& commands) {
    auto options = std::make_shared<RebuildCommandOptions>();
    CLI::App& rebuild = commands.add(
        "rebuild", "把索引中没有的 .eml 邮件收入归档索引",
        {{{"rebuild --dry-run ~/邮件归档", "只看会收入多少封"}, {"rebuild ~/邮件归档", "收入并写出索引"}}});
    rebuild.add_option("root", options->root, "归档文件夹")->required()->type_name("DIR");
    rebuild.add_flag("--dry-run", options->isDryRun, "只查看，不写入");
    commands.setRunAlone(rebuild,
                         [options](const CommonOptions& common) { return runRebuild(*options, common); });
}

} // namespace corvane::cli
