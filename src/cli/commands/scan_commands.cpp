#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string_view>

#include <fmt/format.h>

#include "cli/commands/commands.h"
#include "cli/console/output.h"
#include "cli/console/progress_line.h"
#include "cli/console/text_table.h"
#include "cli/exit_status.h"
#include "model/unkept_data.h"
#include "records/logs/console_log.h"
#include "records/texts/formatters.h"

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
    const MailScanState& state = model.mail().scanFlow.state();
    JsonDocument document;
    document.object([&] {
        document.member("state", stateName(state));
        if (state.kind == MailScanState::Kind::failed) {
            document.member("message", state.text);
            document.member("error", state.text);
        }
        document.member("summary", model.mail().catalog.summary());
        document.member("timingLog", model.mail().scanFlow.scanTimingLog());
        document.member("messages", static_cast<std::int64_t>(model.mail().catalog.messages()->size()));
        document.member("scanSeconds", seconds);
        if (model.mail().catalog.state()->isPartial()) document.member("complete", false);
    });
    document.print();
}

// Runs `start` to its end, with the line of progress on standard error.
int runScanToEnd(Session& session, bool json, const std::function<void()>& start) {
    CorvaneViewModel& model = session.model();
    ProgressLine progress;
    const auto showState = QObject::connect(&model.mail().scanFlow, &ScanFlow::stateChanged, [&] {
        if (model.mail().scanFlow.state().isScanning()) progress.show(model.mail().scanFlow.state().text);
    });
    const auto begin = std::chrono::steady_clock::now();
    auto published = begin;
    const auto notePublished =
        QObject::connect(&model.mail().visible, &VisibleMessages::visibleMessagesChanged,
                         [&] { published = std::chrono::steady_clock::now(); });
    start();
    session.waitUntilIdle([&] { model.mail().scanFlow.cancelScan(); });
    QObject::disconnect(showState);
    QObject::disconnect(notePublished);
    const double seconds = std::chrono::duration<double>(published - begin).count();
    if (model.mail().catalog.state()->isPartial())
        messageLine("扫描没有完成，列出的邮件不是全部；上次的完整结果没有改动。");
    if (wasInterrupted()) throw Interrupted();
    const MailScanState& state = model.mail().scanFlow.state();
    const bool isFailure = state.kind == MailScanState::Kind::failed;
    if (json)
        printScanJson(model, seconds);
    else if (isFailure)
        throw CommandFailure(state.text);
    else
        printText(fmt::format("扫描完成：{} 封邮件，{}，用时 {:.2f} 秒",
                              model.mail().catalog.messages()->size(),
                              formatByteCount(model.mail().catalog.summary().bytes), seconds));
    return statusOf(state);
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

int runAccounts(Session& session, bool json) {
    AccountDirectory& accounts = session.model().mail().accounts;
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
    return runScanToEnd(session, json, [&] { session.model().mail().scanFlow.refreshAllMailData(); });
}

int runScan(Session& session, std::optional<std::int64_t> maximumYear, bool json) {
    session.waitUntilIdle();
    ModelFilters& filters = session.model().mail().filters;
    if (maximumYear) {
        filters.set(&ListFilters::yearCutoff, *maximumYear);
        filters.set(&ListFilters::onlyBeforeCutoff, true);
    }
    return runScanToEnd(session, json, [&] { session.model().mail().scanFlow.scan(); });
}

int runDiagnose(Session& session, bool json) {
    CorvaneViewModel& model = session.model();
    session.waitUntilIdle();
    if (model.mail().accounts.availableAccounts().empty()) model.mail().accounts.refreshAccountsFromMail();
    session.waitUntilIdle();
    // A home of which no account is selected, as before its first refresh, is looked at as a whole.
    std::set<std::string> prefixes = model.mail().accounts.selectedAccountPrefixes();
    if (prefixes.empty()) {
        for (const MailAccount& account : model.mail().accounts.availableAccounts())
            prefixes.insert(account.urlPrefix);
    }
    model.mail().diagnostics.write(prefixes);
    session.waitUntilIdle();
    session.requireKept(unkeptResultsText(session.context().support));
    const std::string path = model.mail().diagnostics.logPath();
    if (json) {
        JsonDocument document;
        document.object([&] { document.member("log", path); });
        document.print();
    } else {
        printText(path);
    }
    return done;
}

} // namespace

void addScanCommands(CommandSet& commands) {
    commands.setRun(commands.add("accounts", "从 Mail 存储读取账户",
                                 {{{"accounts", "列出 Mail 的账户"},
                                   {"accounts --json", "连同文件夹和重复说明，给脚本用"}}}),
                    &runAccounts);
    commands.setRun(commands.add("refresh", "完整刷新：账户，然后扫描全部邮件",
                                 {{{"refresh", "读取账户并扫描全部邮件"},
                                   {"refresh --json --log", "结果给脚本用，并显示开发用的日志行"}}}),
                    &runRefresh);
    auto maximumYear = std::make_shared<std::optional<std::int64_t>>();
    CLI::App& scan = commands.add(
        "scan", "扫描所选账户",
        {{{"scan", "扫描所选账户的全部邮件"}, {"scan --max-year 2015", "只扫描 2015 年及以前的邮件"}}});
    scan.add_option("--max-year", *maximumYear, "只扫描这一年及以前的邮件");
    commands.setRun(
        scan, [maximumYear](Session& session, bool json) { return runScan(session, *maximumYear, json); });
    commands.setRun(
        commands.add("diagnose", "写出恢复邮件的诊断日志",
                     {{{"diagnose", "写出日志并显示它的位置"}, {"diagnose --json", "日志的位置，给脚本用"}}}),
        &runDiagnose);
}

} // namespace corvane::cli
