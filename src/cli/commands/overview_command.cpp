#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include <fmt/format.h>

#include "cli/away_days.h"
#include "cli/commands/commands.h"
#include "cli/console/output.h"
#include "cli/console/text_table.h"
#include "cli/exit_status.h"
#include "cli/overview_loading.h"
#include "library/overview/archived_overview.h"
#include "library/overview/status_titles.h"
#include "records/texts/formatters.h"

namespace corvane::cli {

namespace {

using Group = ArchivedOverviewGroup;
using Stats = ArchivedOverviewStats;

struct OverviewOptions {
    ArchivedOverviewFilter filter = ArchivedOverviewFilter::all;
    bool check = false;
};

// Calls `visit(group, stats)` for each group that has something to show, and for all of them without a
// filter.
template <class Visit>
void forShownGroups(const ArchivedOverview& overview, ArchivedOverviewFilter filter, const Visit& visit) {
    for (std::size_t number = 0; number < overview.groups->size(); ++number) {
        const Stats::Group& stats = overview.stats.groups[number];
        const bool isShownAtAll =
            filter == ArchivedOverviewFilter::all ||
            std::ranges::any_of(stats.years, [&](const Stats::Year& year) { return isShown(year, filter); });
        if (isShownAtAll) visit((*overview.groups)[number], stats);
    }
}

// The same for the years of a group.
template <class Visit>
void forShownYears(const Group& group, const Stats::Group& stats, ArchivedOverviewFilter filter,
                   const Visit& visit) {
    for (std::size_t number = 0; number < group.years.size(); ++number) {
        if (isShown(stats.years[number], filter)) visit(group.years[number], stats.years[number]);
    }
}

void writeFolders(JsonDocument& document, const Group::YearGroup& year, const Stats::Year& stats) {
    for (std::size_t number = 0; number < year.folders.size(); ++number) {
        const Group::FolderRow& folder = year.folders[number];
        const Stats::Folder& state = stats.folders[number];
        document.object([&] {
            document.member("mailbox", folder.mailbox);
            document.member("status", rawValue(state.status));
            document.member("count", folder.count);
            document.member("bytes", folder.bytes);
            document.member("present", state.presence.present);
            document.member("missing", state.presence.missing);
            document.member("unknown", state.presence.unknown);
        });
    }
}

void writeYear(JsonDocument& document, const Group::YearGroup& year, const Stats::Year& stats) {
    document.object([&] {
        document.member("year", year.year);
        document.member("status", rawValue(stats.status));
        document.member("count", year.count);
        document.member("bytes", year.bytes);
        document.key("folders");
        document.array([&] { writeFolders(document, year, stats); });
    });
}

void writeGroup(JsonDocument& document, const Group& group, const Stats::Group& stats,
                ArchivedOverviewFilter filter) {
    document.object([&] {
        document.member("key", group.key);
        document.member("title", group.title);
        document.member("count", group.count);
        document.member("bytes", group.bytes);
        document.member("undownloaded", stats.undownloaded);
        document.key("years");
        document.array([&] {
            forShownYears(group, stats, filter, [&](const auto& year, const auto& yearStats) {
                writeYear(document, year, yearStats);
            });
        });
    });
}

void writeSum(JsonDocument& document, const char* name, const MailSum& sum) {
    document.key(name);
    document.object([&] {
        document.member("count", sum.count);
        document.member("bytes", sum.bytes);
    });
}

void printJson(const ArchivedOverview& overview, ArchivedOverviewFilter filter, const AwayProofs& away) {
    JsonDocument document;
    document.object([&] {
        document.member("presence", rawValue(overview.presenceState()));
        document.key("groups");
        document.array([&] {
            forShownGroups(overview, filter, [&](const Group& group, const Stats::Group& stats) {
                writeGroup(document, group, stats, filter);
            });
        });
        writeSum(document, "freeable", overview.stats.freeable);
        writeSum(document, "removed", overview.stats.removed);
        writeSum(document, "unknown", overview.stats.unknown);
        writeAwayProofs(document, away);
    });
    document.print();
}

std::string sumText(const char* title, const MailSum& sum) {
    return fmt::format("{}：{} 封，{}", title, sum.count, formatByteCount(sum.bytes));
}

void printSums(const ArchivedOverview& overview, const AwayProofs& away) {
    switch (overview.presenceState()) {
    case OriginalPresence::State::unchecked:
        printText("未检查：加上 --check 对照 Mail 后，这里显示可以安全删除、释放的空间。");
        return;
    case OriginalPresence::State::unavailable:
        printText("未读取 Mail 状态");
        return;
    case OriginalPresence::State::checked:
        break;
    }
    printText(sumText("可释放空间", overview.stats.freeable));
    printAwayProofs(away);
    if (overview.stats.removed.count > 0) printText(sumText("已从 Mail 删除", overview.stats.removed));
    if (overview.stats.unknown.count > 0) printText(sumText("待确认", overview.stats.unknown));
}

// Counts of originals, without those that are 0.
std::string presenceText(const FolderPresence& presence) {
    std::string text;
    const auto add = [&](std::int64_t count, const char* what) {
        if (count > 0) text += fmt::format("{}{} {}", text.empty() ? "" : "，", what, count);
    };
    add(presence.present, "在 Mail");
    add(presence.unproven, "其中还没有核对");
    add(presence.missing, "已删");
    add(presence.unknown, "待确认");
    return text;
}

void addYear(TextTable& table, const Group::YearGroup& year, const Stats::Year& stats) {
    table.row({fmt::format("{}", year.year), std::string(overviewYearTitle(stats)),
               fmt::format("{}", year.count), formatByteCount(year.bytes), ""});
    for (std::size_t number = 0; number < year.folders.size(); ++number) {
        const Group::FolderRow& folder = year.folders[number];
        const Stats::Folder& state = stats.folders[number];
        table.row({"  " + folder.mailbox, std::string(overviewStatusTitle(state.status, state.awaitsProof)),
                   fmt::format("{}", folder.count), formatByteCount(folder.bytes),
                   presenceText(state.presence)});
    }
}

void printGroup(const Group& group, const Stats::Group& stats, ArchivedOverviewFilter filter) {
    printText("");
    printText(fmt::format("{}：{} 封，{}（{}）", group.title, group.count, formatByteCount(group.bytes),
                          group.key));
    using enum TextTable::Align;
    TextTable table({left, left, right, right, left});
    table.row({"年份与邮箱", "状态", "封数", "大小", "原件"});
    forShownYears(group, stats, filter,
                  [&](const auto& year, const auto& yearStats) { addYear(table, year, yearStats); });
    table.print();
    if (group.undated.count > 0) printText(sumText("没有日期，不在任何年份里", group.undated));
    if (stats.undownloaded > 0)
        printText(fmt::format("{} 封云端未下载,暂不能清理(在 Mail 里下载后才可备份)", stats.undownloaded));
}

void printReadable(const ArchivedOverview& overview, ArchivedOverviewFilter filter, const AwayProofs& away) {
    if (overview.groups->empty()) return printText("还没有归档邮件");
    printSums(overview, away);
    forShownGroups(overview, filter,
                   [&](const Group& group, const Stats::Group& stats) { printGroup(group, stats, filter); });
}

int runOverview(Session& session, const OverviewOptions& options, bool json) {
    const SharedOverview overview =
        loadOverview(session, options.check ? OriginalsCheck::compare : OriginalsCheck::known);
    const AwayProofs away = awayProofsOf(session);
    json ? printJson(*overview, options.filter, away) : printReadable(*overview, options.filter, away);
    return statusOfAnswer();
}

} // namespace

void addOverviewCommand(CommandSet& commands) {
    static const std::map<std::string, ArchivedOverviewFilter> filters = {
        {"all", ArchivedOverviewFilter::all},
        {"cleanable", ArchivedOverviewFilter::cleanable},
        {"removed", ArchivedOverviewFilter::removed}};
    auto options = std::make_shared<OverviewOptions>();
    CLI::App& overview = commands.add("overview", "已归档概览：每个账户、年份和邮箱能释放多少空间",
                                      {{{"overview --check", "先对照 Mail 并逐字节核对，再列出"},
                                        {"overview --filter cleanable", "只看可以清理的年份"}}});
    overview.add_option("--filter", options->filter, "要列出的年份")->transform(oneOf(filters));
    overview.add_flag("--check", options->check, "先对照 Mail 中的原件，并核对还没有核对的邮件");
    commands.setRun(overview,
                    [options](Session& session, bool json) { return runOverview(session, *options, json); });
}

} // namespace corvane::cli
