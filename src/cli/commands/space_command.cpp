#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "cli/commands/commands.h"
#include "cli/console/output.h"
#include "cli/console/text_table.h"
#include "cli/exit_status.h"
#include "cli/known_accounts.h"
#include "listing/space_usage.h"
#include "records/texts/formatters.h"

namespace corvane::cli {

namespace {

struct SpaceOptions {
    std::string account; // its prefix
    std::string sender;  // its key
};

std::vector<SpaceAccountUsage> usageOf(Session& session, const std::string& account) {
    SpaceUsageFlow& space = session.model().mail().space;
    space.refreshSpaceUsage();
    session.waitUntilIdle();
    std::vector<SpaceAccountUsage> usages = *space.spaceUsage();
    if (!account.empty())
        std::erase_if(usages, [&](const SpaceAccountUsage& usage) { return usage.accountPrefix != account; });
    return usages;
}

// Sorted.
std::vector<std::string> idsBehind(Session& session, const SpaceOptions& options) {
    const MessageCatalog& catalog = session.model().mail().catalog;
    const SharedTextSet found = localMessageIDs(*catalog.messages(), *catalog.locallyAvailableIDs(),
                                                options.account, {options.sender});
    std::vector<std::string> ids;
    for (const SharedText& id : found) ids.push_back(id.str());
    std::ranges::sort(ids);
    return ids;
}

void printSenders(const SpaceAccountUsage& usage) {
    using enum TextTable::Align;
    TextTable table({left, right, right, left});
    table.row({"发件人", "封数", "大小", "key"});
    for (const SpaceSenderStat& sender : usage.topSenders) {
        table.row({sender.displayName, fmt::format("{}", sender.messageCount), formatByteCount(sender.bytes),
                   sender.senderKey});
    }
    table.print();
}

void printUsages(const std::vector<SpaceAccountUsage>& usages) {
    using enum TextTable::Align;
    TextTable table({left, right, right, right, right, left});
    table.row({"账户", "本机已下载", "大小", "云端未下载", "大小", "前缀"});
    for (const SpaceAccountUsage& usage : usages) {
        table.row({usage.accountName, fmt::format("{}", usage.localCount), formatByteCount(usage.localBytes),
                   fmt::format("{}", usage.cloudOnlyCount), formatByteCount(usage.cloudOnlyBytes),
                   usage.accountPrefix});
    }
    table.print();
}

template <class T>
void printDocument(const T& value) {
    JsonDocument document;
    document.value(value);
    document.print();
}

int runSpace(Session& session, const SpaceOptions& options, bool json) {
    session.restoreLastScan();
    if (!options.account.empty()) requireAccounts(session, {options.account}, json);
    if (!options.sender.empty()) {
        const std::vector<std::string> ids = idsBehind(session, options);
        if (json) {
            printDocument(ids);
        } else {
            for (const std::string& id : ids) printText(id);
        }
        return done;
    }
    const std::vector<SpaceAccountUsage> usages = usageOf(session, options.account);
    if (json) {
        printDocument(usages);
    } else {
        printUsages(usages);
        if (!options.account.empty() && !usages.empty()) printSenders(usages.front());
    }
    return done;
}

} // namespace

void addSpaceCommand(CommandSet& commands) {
    auto options = std::make_shared<SpaceOptions>();
    CLI::App& space = commands.add(
        "space", "Apple Mail 占用这台电脑的空间",
        {{{"space", "每个账户占多少空间"}, {"space --account imap://…", "一个账户占空间最多的发件人"}}});
    auto* account = space.add_option("--account", options->account, "账户前缀")->type_name("PREFIX");
    space.add_option("--sender", options->sender, "列出这个发件人的邮件，按它的 key")
        ->needs(account)
        ->type_name("KEY");
    commands.setRun(space,
                    [options](Session& session, bool json) { return runSpace(session, *options, json); });
}

} // namespace corvane::cli
