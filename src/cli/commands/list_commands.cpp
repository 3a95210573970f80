#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "cli/away_days.h"
#include "cli/commands/commands.h"
#include "cli/console/output.h"
#include "cli/console/text_table.h"
#include "cli/exit_status.h"
#include "cli/known_accounts.h"
#include "model/mail/messages/message_preview.h"
#include "records/model_enums.h"
#include "records/texts/formatters.h"

namespace corvane::cli {

namespace {

struct MessagesOptions {
    std::vector<std::string> accounts;
    std::vector<std::int64_t> years;
    std::string query;
    std::int64_t minimumAttachments = 0;
    MailSortMode sort = MailSortMode::newest;
    bool ascending = false;
    MigratedFilter filter = MigratedFilter::all;
};

void printMessagesTable(const MessageList& messages) {
    TextTable table({TextTable::Align::left, TextTable::Align::right, TextTable::Align::right,
                     TextTable::Align::left, TextTable::Align::left});
    table.row({"日期", "大小", "附件", "发件人", "主题"});
    for (const MailMessageRecord& message : messages) {
        table.row({message.formattedDate(), formatByteCount(message.messageSize),
                   fmt::format("{}", message.attachmentCount()), message.sender.str(),
                   message.subject.str()});
    }
    table.print();
}

template <class T>
std::set<T> asSet(const std::vector<T>& values) {
    return {values.begin(), values.end()};
}

// Year keys are text.
std::map<std::string, std::int64_t> withTextKeys(const CountByYear& counts) {
    std::map<std::string, std::int64_t> keyed;
    for (const auto& [year, count] : counts) keyed.emplace(fmt::format("{}", year), count);
    return keyed;
}

std::map<std::string, std::map<std::string, std::int64_t>> withTextKeys(const CountByAccountAndYear& counts) {
    std::map<std::string, std::map<std::string, std::int64_t>> keyed;
    for (const auto& [account, years] : counts) keyed.emplace(account, withTextKeys(years));
    return keyed;
}

void printStatsJson(CorvaneViewModel& model, const std::set<std::int64_t>& years, const AwayProofs& away) {
    const DeletionSafety safety = model.deletionSafety(years);
    const MailScanSummary candidates = model.archiving().candidates.archiveCandidateSummary();
    JsonDocument document;
    document.object([&] {
        document.member("summary", model.mail().catalog.summary());
        document.member("yearStats", model.mail().catalog.yearStats());
        document.member("localYearStats", model.mail().catalog.cachedLocalYearStats());
        document.member("accountYearStats", model.mail().catalog.cachedAccountYearStats());
        document.member("mailAccountYearStats", model.mail().catalog.cachedMailAccountYearStats());
        document.member("unbackedAccountYearStats",
                        model.mail().catalog.state()->availability->unbackedAccountYearStats);
        document.member("indexedYearCounts", withTextKeys(model.mail().counts.indexedYearCounts()));
        document.member("indexedYearCountsByAccount",
                        withTextKeys(model.mail().counts.indexedYearCountsByAccount()));
        document.member("undownloadedYearCountsByAccount",
                        withTextKeys(model.mail().counts.undownloadedYearCountsByAccount()));
        document.member("spaceUsage", *model.mail().space.spaceUsage());
        document.key("deletionSafety");
        document.object([&] {
            document.member("local", safety.local);
            document.member("archived", safety.archived);
            document.member("serverOnly", safety.serverOnly);
        });
        document.key("candidates");
        document.object([&] {
            document.member("count", candidates.matchedMessages);
            document.member("bytes", candidates.bytes);
        });
        writeAwayProofs(document, away);
    });
    document.print();
}

void printStatsTable(CorvaneViewModel& model, const std::set<std::int64_t>& years, const AwayProofs& away) {
    TextTable table(
        {TextTable::Align::right, TextTable::Align::right, TextTable::Align::right, TextTable::Align::right});
    table.row({"年份", "邮件", "含附件", "大小"});
    for (const YearStat& stat : model.mail().catalog.yearStats()) {
        table.row({stat.displayYear(), fmt::format("{}", stat.messageCount),
                   fmt::format("{}", stat.withAttachmentCount), formatByteCount(stat.messageBytes)});
    }
    table.print();
    const DeletionSafety safety = model.deletionSafety(years);
    const MailScanSummary candidates = model.archiving().candidates.archiveCandidateSummary();
    printText(fmt::format("本机 {} 封，已归档 {} 封，仅在服务器 {} 封；可归档 {} 封，{}", safety.local,
                          safety.archived, safety.serverOnly, candidates.matchedMessages,
                          formatByteCount(candidates.bytes)));
    printAwayProofs(away);
}

int runMessages(Session& session, const MessagesOptions& options, bool json) {
    ModelFilters& filters = session.model().mail().filters;
    session.restoreLastScan();
    requireAccounts(session, options.accounts, json);
    filters.setFilterAccountPrefixes(asSet(options.accounts));
    filters.set(&ListFilters::filterYears, asSet(options.years));
    filters.set(&ListFilters::searchText, options.query);
    filters.set(&ListFilters::minimumAttachmentCount, options.minimumAttachments);
    filters.set(&ListFilters::sortMode, options.sort);
    filters.set(&ListFilters::sortAscending, options.ascending);
    filters.set(&ListFilters::migratedFilter, options.filter);
    session.model().mail().visible.rebuildVisibleMessages();
    session.waitUntilIdle();
    const MessageList& messages = *session.model().mail().visible.visibleMessages();
    if (json) {
        JsonDocument document;
        document.value(messages);
        document.print();
    } else {
        printMessagesTable(messages);
    }
    return done;
}

int runPreview(Session& session, const std::string& file, bool json) {
    const std::string preview = messagePreview(session.platform(), file);
    if (json) {
        JsonDocument document;
        document.object([&] { document.member("preview", preview); });
        document.print();
    } else {
        printLines(preview);
    }
    return done;
}

int runStats(Session& session, const std::vector<std::int64_t>& years, bool json) {
    session.restoreLastScan();
    session.model().mail().filters.set(&CandidateFilters::archiveFilterYears, asSet(years));
    session.model().mail().space.refreshSpaceUsage();
    session.waitUntilIdle();
    const ProofScope scope{{}, asSet(years)};
    const AwayProofs away = awayProofsOf(session, [&](const MailMessageRecord& message) {
        return scope.holds(message, *session.model().mail().catalog.messageYearByID());
    });
    if (json)
        printStatsJson(session.model(), asSet(years), away);
    else
        printStatsTable(session.model(), asSet(years), away);
    return done;
}

void addMessages(CommandSet& commands) {
    static const std::map<std::string, MailSortMode> sorts = {{"newest", MailSortMode::newest},
                                                              {"messageSize", MailSortMode::messageSize}};
    static const std::map<std::string, MigratedFilter> filters = {
        {"all", MigratedFilter::all},
        {"notMigrated", MigratedFilter::notMigrated},
        {"onlyMigrated", MigratedFilter::onlyMigrated}};
    auto options = std::make_shared<MessagesOptions>();
    CLI::App& messages = commands.add("messages", "上次扫描的邮件列表",
                                      {{{"messages --year 2014 --query 合同", "2014 年提到合同的邮件"},
                                        {"messages --sort messageSize", "最大的邮件在前"}}});
    messages.add_option("--account", options->accounts, "账户前缀")->allow_extra_args(false);
    messages.add_option("--year", options->years, "年份")->allow_extra_args(false);
    messages.add_option("--query", options->query, "搜索文字");
    messages.add_option("--min-attachments", options->minimumAttachments, "最少附件数");
    messages.add_option("--sort", options->sort, "排序")->transform(oneOf(sorts));
    messages.add_flag("--ascending", options->ascending, "升序");
    messages.add_option("--filter", options->filter, "全部、未归档的或已归档的")->transform(oneOf(filters));
    commands.setRun(messages,
                    [options](Session& session, bool json) { return runMessages(session, *options, json); });
}

} // namespace

void addListCommands(CommandSet& commands) {
    addMessages(commands);
    auto file = std::make_shared<std::string>();
    CLI::App& preview = commands.add("preview", "一封 .emlx 邮件的预览文字",
                                     {{{"preview 123.emlx", "显示这封邮件的正文开头"},
                                       {"preview --json 123.emlx", "同样的文字，给脚本用"}}});
    preview.add_option("file", *file, "邮件文件")->required()->type_name("FILE");
    commands.setRun(preview,
                    [file](Session& session, bool json) { return runPreview(session, *file, json); });
    auto years = std::make_shared<std::vector<std::int64_t>>();
    CLI::App& stats = commands.add("stats", "上次扫描的统计",
                                   {{{"stats", "各年有多少邮件、多少已经归档"},
                                     {"stats --year 2014 --year 2015", "可归档和可删除的数只算这两年"}}});
    stats.add_option("--year", *years, "限定年份")->allow_extra_args(false);
    commands.setRun(stats, [years](Session& session, bool json) { return runStats(session, *years, json); });
}

} // namespace corvane::cli
