#include <stop_token>
#include <string>
#include <utility>

#include <fmt/format.h>

#include "archive/checks/archive_rebuild.h"
#include "cli/commands.h"
#include "cli/exit_status.h"
#include "cli/output.h"
#include "cli/progress_line.h"
#include "cli/verified_readings.h"
#include "platform/paths.h"
#include "platform/platform.h"

namespace corvane::cli {

namespace {

void printJson(const ArchiveRebuild& rebuild) {
    JsonDocument document;
    document.object([&] {
        document.member("adopted", rebuild.adopted);
        document.member("records", rebuild.records);
        document.key("failures");
        document.array([&] {
            for (const ArchiveRebuild::Failure& failure : rebuild.failures) {
                document.object([&] {
                    document.member("path", failure.path);
                    document.member("reason", failure.reason);
                });
            }
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

} // namespace

int runRebuild(const std::string& root, const RebuildCommandOptions& command, bool json) {
    ProgressLine line;
    std::stop_source stop;
    const auto system = platform::makePlatform(command.home);
    RebuildOptions options;
    options.isDryRun = command.isDryRun;
    options.markHidden = [&](const std::string& path) { system->markHidden(path); };
    options.progress = [&](std::size_t read, std::size_t all) {
        if (wasInterrupted()) stop.request_stop();
        line.show(fmt::format("已读取 {} / {}", read, all), double(read) / double(all));
    };
    ArchiveRebuild rebuild = rebuildArchive(platform::standardizedPath(root), options, stop.get_token());
    if (rebuild.wasCancelled) throw Interrupted();
    if (!command.isDryRun) keepReadings(*system, root, std::move(rebuild.readings));
    if (json)
        printJson(rebuild);
    else
        printReadable(rebuild, command.isDryRun);
    return rebuild.failures.empty() ? done : doneWithIssues;
}

} // namespace corvane::cli
