#include <chrono>
#include <map>
#include <set>

#include <fmt/format.h>

#include "cli/commands.h"
#include "cli/exit_status.h"
#include "cli/output.h"
#include "cli/progress_line.h"
#include "model/mail/message_preview.h"
#include "records/formatters.h"
#include "records/logs/console_log.h"

namespace corvane::cli {

namespace {

std::string_view stateName(const MailScanState& state) {
    switch (state.kind) {
    case MailScanState::Kind::finished:
        return "finished";
    case MailScanState::Kind::failed:
        return "failed";
    default:
        return "idle";
    }
}

void printScanJson(CorvaneViewModel& model, double seconds) {
    const MailScanState& state = model.scanFlow().state();
    JsonDocument document;
    document.object([&] {
        document.member("state", stateName(state));
        if (state.kind == MailScanState::Kind::failed) {
            document.member("message", state.text);
            document.member("error", state.text);
        }
        document.member("summary", model.catalog().summary());
        document.member("timingLog", model.scanFlow().scanTimingLog());
        document.member("messages", static_cast<std::int64_t>(model.catalog().messages()->size()));
        document.member("scanSeconds", seconds);
        if (model.catalog().state()->isPartial()) document.member("complete", false);
    });
    document.print();
}

// Runs `start` to its end, with the line of progress on standard error.
int runScanToEnd(Session& session, bool json, const std::function<void()>& start) {
    CorvaneViewModel& model = session.model();
    ProgressLine progress;
    const auto showState = QObject::connect(&model.scanFlow(), &ScanFlow::stateChanged, [&] {
        if (model.scanFlow().state().isScanning()) progress.show(model.scanFlow().state().text);
    });
    const auto begin = std::chrono::steady_clock::now();
    auto published = begin;
    const auto notePublished = QObject::connect(&model.visible(), &VisibleMessages::visibleMessagesChanged,
                                                [&] { published = std::chrono::steady_clock::now(); });
    start();
    session.waitUntilIdle([&] { model.scanFlow().cancelScan(); });
    QObject::disconnect(showState);
    QObject::disconnect(notePublished);
    const double seconds = std::chrono::duration<double>(published - begin).count();
    if (model.catalog().state()->isPartial())
        messageLine("扫描没有完成，列出的邮件不是全部；上次的完整结果没有改动。");
    if (wasInterrupted()) throw Interrupted();
    const MailScanState& state = model.scanFlow().state();
    const bool isFailure = state.kind == MailScanState::Kind::failed;
    if (json)
        printScanJson(model, seconds);
    else if (isFailure)
        throw CommandFailure(state.text);
    else
        printText(fmt::format("扫描完成：{} 封邮件，{}，用时 {:.2f} 秒", model.catalog().messages()->size(),
                              formatByteCount(model.catalog().summary().bytes), seconds));
    return isFailure ? failed : done;
}

void printAccountsTable(const std::vector<MailAccount>& accounts) {
    TextTable table(
        {TextTable::Align::left, TextTable::Align::left, TextTable::Align::right, TextTable::Align::left});
    table.row({"账户", "类型", "邮件", "说明"});
    for (const MailAccount& account : accounts) {
        std::int64_t count = 0;
        for (const FolderInfo& folder : account.folders) count += folder.count;
        table.row({account.distinguishedLabel(), account.scheme, fmt::format("{}", count),
                   account.duplicationNote.value_or("")});
    }
    table.print();
}

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

void printStatsJson(CorvaneViewModel& model, const std::set<std::int64_t>& years) {
    const DeletionSafety safety = model.deletionSafety(years);
    const MailScanSummary candidates = model.candidates().archiveCandidateSummary();
    JsonDocument document;
    document.object([&] {
        document.member("summary", model.catalog().summary());
        document.member("yearStats", model.catalog().yearStats());
        document.member("localYearStats", model.catalog().cachedLocalYearStats());
        document.member("accountYearStats", model.catalog().cachedAccountYearStats());
        document.member("mailAccountYearStats", model.catalog().cachedMailAccountYearStats());
        document.member("unbackedAccountYearStats",
                        model.catalog().state()->availability->unbackedAccountYearStats);
        document.member("indexedYearCounts", withTextKeys(model.counts().indexedYearCounts()));
        document.member("indexedYearCountsByAccount",
                        withTextKeys(model.counts().indexedYearCountsByAccount()));
        document.member("undownloadedYearCountsByAccount",
                        withTextKeys(model.counts().undownloadedYearCountsByAccount()));
        document.member("spaceUsage", model.space().spaceUsage());
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
    });
    document.print();
}

void printStatsTable(CorvaneViewModel& model, const std::set<std::int64_t>& years) {
    TextTable table(
        {TextTable::Align::right, TextTable::Align::right, TextTable::Align::right, TextTable::Align::right});
    table.row({"年份", "邮件", "含附件", "大小"});
    for (const YearStat& stat : model.catalog().yearStats()) {
        table.row({stat.displayYear(), fmt::format("{}", stat.messageCount),
                   fmt::format("{}", stat.withAttachmentCount), formatByteCount(stat.messageBytes)});
    }
    table.print();
    const DeletionSafety safety = model.deletionSafety(years);
    const MailScanSummary candidates = model.candidates().archiveCandidateSummary();
    printText(fmt::format("本机 {} 封，已归档 {} 封，仅在服务器 {} 封；可归档 {} 封，{}", safety.local,
                          safety.archived, safety.serverOnly, candidates.matchedMessages,
                          formatByteCount(candidates.bytes)));
}

} // namespace

int runAccounts(Session& session, bool json) {
    AccountDirectory& accounts = session.model().accounts();
    accounts.refreshAccountsFromMail();
    session.waitUntilIdle();
    if (accounts.accountLoadFailureMessage()) throw CommandFailure(*accounts.accountLoadFailureMessage());
    if (json) {
        JsonDocument document;
        document.value(accounts.availableAccounts());
        document.print();
    } else {
        printAccountsTable(accounts.availableAccounts());
    }
    return done;
}

int runRefresh(Session& session, bool json) {
    return runScanToEnd(session, json, [&] { session.model().scanFlow().refreshAllMailData(); });
}

int runScan(Session& session, std::optional<std::int64_t> maximumYear, bool json) {
    session.waitUntilIdle();
    ModelFilters& filters = session.model().filters();
    if (maximumYear) {
        filters.setYearCutoff(*maximumYear);
        filters.setOnlyBeforeCutoff(true);
    }
    return runScanToEnd(session, json, [&] { session.model().scanFlow().scan(); });
}

int runMessages(Session& session, const MessagesOptions& options, bool json) {
    ModelFilters& filters = session.model().filters();
    session.restoreLastScan();
    filters.setFilterAccountPrefixes(asSet(options.accounts));
    filters.setFilterYears(asSet(options.years));
    filters.setSearchText(options.query);
    filters.setMinimumAttachmentCount(options.minimumAttachments);
    filters.setSortMode(options.sort);
    filters.setSortAscending(options.ascending);
    filters.setMigratedFilter(options.filter);
    session.model().visible().rebuildVisibleMessages();
    session.waitUntilIdle();
    const MessageList& messages = *session.model().visible().visibleMessages();
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

int runDiagnose(Session& session, bool json) {
    CorvaneViewModel& model = session.model();
    session.waitUntilIdle();
    if (model.accounts().availableAccounts().empty()) model.accounts().refreshAccountsFromMail();
    session.waitUntilIdle();
    // A home of which no account is selected, as before its first refresh, is looked at as a whole.
    std::set<std::string> prefixes = model.accounts().selectedAccountPrefixes();
    if (prefixes.empty()) {
        for (const MailAccount& account : model.accounts().availableAccounts())
            prefixes.insert(account.urlPrefix);
    }
    model.diagnostics().write(prefixes);
    session.waitUntilIdle();
    const std::string path = model.diagnostics().logPath();
    if (json) {
        JsonDocument document;
        document.object([&] { document.member("log", path); });
        document.print();
    } else {
        printText(path);
    }
    return done;
}

int runStats(Session& session, const std::vector<std::int64_t>& years, bool json) {
    session.restoreLastScan();
    session.model().filters().setArchiveFilterYears(asSet(years));
    session.waitUntilIdle();
    if (json)
        printStatsJson(session.model(), asSet(years));
    else
        printStatsTable(session.model(), asSet(years));
    return done;
}

} // namespace corvane::cli
