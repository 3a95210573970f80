#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "cli/commands/commands.h"
#include "cli/console/output.h"
#include "cli/console/text_table.h"
#include "cli/exit_status.h"
#include "cli/library_options.h"
#include "model/unkept_data.h"
#include "records/logs/console_log.h"

namespace corvane::cli {

namespace {

struct MergeOptions {
    std::string action; // "show", or empty
    std::optional<std::string> name;
    std::optional<std::string> removed;
    std::vector<std::string> bases;
    std::vector<std::string> addresses;
};

void printRules(const ArchiveAccountMergeRules& rules, bool json) {
    if (json) {
        JsonDocument document;
        document.object([&] {
            for (const auto& [key, name] : rules) document.member(key, name);
        });
        document.print();
        return;
    }
    if (rules.empty()) return printText("还没有把账户或地址归在一起");
    using enum TextTable::Align;
    TextTable table({left, left});
    table.row({"分组", "账户或地址"});
    for (const auto& [key, name] : rules) table.row({name, key});
    table.print();
}

void removeGroup(AccountRules& rules, const std::string& name) {
    if (rules.removeArchiveAccountGroup(name) == 0) messageLine(fmt::format("没有名为“{}”的分组。", name));
}

// One whose accounts or addresses were mistyped collects nothing.
void tellCollected(Session& session, const std::string& groupKey, const std::string& name) {
    std::int64_t count = 0;
    for (const LibraryAccountFilterOption& option : loadLibraryIndex(session)->accountOptions()) {
        if (option.key == groupKey) count = option.count;
    }
    messageLine(fmt::format("分组“{}”现在有 {} 封已归档的邮件。", name, count));
}

int runMerge(Session& session, const MergeOptions& options, bool json) {
    AccountRules& rules = session.model().library().accountRules;
    session.waitUntilIdle();
    std::optional<std::string> made;
    if (options.name) {
        made = rules.setArchiveAccountAddressCollection(options.bases, options.addresses, *options.name);
        if (!made) throw WrongUsage("分组的名称不能是空的。");
    }
    if (options.removed) removeGroup(rules, *options.removed);
    session.waitUntilIdle();
    const bool isChanged = options.name || options.removed;
    if (isChanged) session.requireKept(unkeptSettingsText(session.context().settings));
    if (made) tellCollected(session, *made, *options.name);
    printRules(rules.archiveAccountMergeRules(), json);
    return done;
}

} // namespace

void addMergeCommand(CommandSet& commands) {
    auto options = std::make_shared<MergeOptions>();
    CLI::App& merge =
        commands.add("merge", "把几个账户或地址的已归档邮件归在一起",
                     {{{"merge show", "列出现有的分组"},
                       {"merge --name 工作 --base mail-account:me@corp.example --address boss@corp.example",
                        "建立或替换一个分组"}}});
    auto* show = merge.add_option("action", options->action, "show：只列出现有的分组");
    show->check([](const std::string& word) { return word == "show" ? "" : "只能是 show：" + word; },
                "{show}");
    auto* name = merge.add_option("--name", options->name, "分组的名称")->type_name("NAME");
    auto* removed = merge.add_option("--remove", options->removed, "取消这个分组")->type_name("NAME");
    for (auto* values : {merge.add_option("--base", options->bases, "账户的 key"),
                         merge.add_option("--address", options->addresses, "邮件地址")})
        values->allow_extra_args(false)->needs(name);
    name->excludes(show)->excludes(removed);
    removed->excludes(show);
    commands.setRun(merge, [options](Session& session, bool json) {
        const bool isChosen = !options->action.empty() || options->name || options->removed;
        if (!isChosen) throw WrongUsage("需要 show、--name 或 --remove 之一。");
        return runMerge(session, *options, json);
    });
}

} // namespace corvane::cli
