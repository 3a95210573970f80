#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <unistd.h>

#include "cli/commands/commands.h"
#include "cli/console/output.h"
#include "cli/exit_status.h"
#include "cli/named_entries.h"
#include "model/unkept_data.h"
#include "records/logs/console_log.h"

namespace corvane::cli {

namespace {

struct RemoveOptions {
    std::vector<std::string> names;
    bool isAgreed = false;
};

// Only a person at a terminal is asked.
bool isAgreed(const std::vector<ArchivedEntry>& entries) {
    if (isatty(STDIN_FILENO) == 0) return true;
    for (const ArchivedEntry& entry : entries) messageLine(entry.record.subject.str());
    messageLine(fmt::format("从归档中删除这 {} 封邮件的文件，无法撤销。继续请输入 y：", entries.size()));
    std::string answer;
    return std::getline(std::cin, answer) && (answer == "y" || answer == "Y" || answer == "yes");
}

void printJson(const ArchiveRemovalEnd& end) {
    JsonDocument document;
    document.object([&] {
        document.member("removed", end.removedIDs.size());
        document.objects("failures", end.failures, [&](const ArchiveRemovalEnd::Failure& failure) {
            document.member("entryID", failure.entryID);
            document.member("reason", failure.reason);
        });
    });
    document.print();
}

void printReadable(const ArchiveRemovalEnd& end) {
    printText(fmt::format("已从归档中删除 {} 封", end.removedIDs.size()));
    for (const ArchiveRemovalEnd::Failure& failure : end.failures)
        printText(fmt::format("未删除：{}：{}", failure.entryID, failure.reason));
}

int runRemove(Session& session, const RemoveOptions& options, bool json) {
    loadLibrary(session); // what is removed leaves it, too
    const auto entries =
        std::make_shared<const std::vector<ArchivedEntry>>(namedEntries(session, options.names));
    if (!options.isAgreed && !isAgreed(*entries)) throw CommandFailure("没有删除任何邮件");
    ArchiveRemovalFlow& removal = session.model().library().removal;
    session.waitUntilIdle();
    removal.deleteArchivedEntries(entries);
    session.waitUntilIdle([&] { removal.cancel(); });
    const ArchiveRemovalEnd& end = removal.lastEnd().value();
    if (json)
        printJson(end);
    else
        printReadable(end);
    return statusOf(end);
}

int runForget(Session& session, const std::string& root, bool json) {
    loadLibrary(session);
    if (!session.model().forgetLocation(root))
        throw CommandFailure(fmt::format("没有这个归档位置：{}", root));
    session.waitUntilIdle();
    session.requireKept(unkeptSettingsText(session.context().settings));
    if (!json) {
        printText("已忘记这个归档位置，其中的文件都还在");
        return done;
    }
    JsonDocument document;
    document.object([&] { document.member("forgotten", true); });
    document.print();
    return done;
}

} // namespace

void addRemovalCommands(CommandSet& commands) {
    auto options = std::make_shared<RemoveOptions>();
    CLI::App& remove = commands.add(
        "remove", "从归档中删除邮件",
        {{{"remove 3fa81c", "删除一封，先询问"}, {"remove 3fa81c 77b0e2 --yes", "删除两封，不询问"}}});
    addNamesArgument(remove, options->names);
    remove.add_flag("--yes", options->isAgreed, "不询问");
    commands.setRun(remove,
                    [options](Session& session, bool json) { return runRemove(session, *options, json); });

    auto root = std::make_shared<std::string>();
    CLI::App& forget = commands.add("forget", "忘记一个归档位置，不动其中的文件",
                                    {{{"forget /Volumes/STICK/Mail", "不再显示这个位置的邮件"},
                                      {"forget ~/归档 --json", "结果为 JSON"}}});
    forget.add_option("root", *root, "归档文件夹")->required()->type_name("DIR");
    commands.setRun(forget, [root](Session& session, bool json) { return runForget(session, *root, json); });
}

} // namespace corvane::cli
