#include <cstdint>
#include <fmt/format.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/commands/archives/body_index_filling.h"
#include "cli/commands/commands.h"
#include "cli/console/output.h"
#include "cli/console/progress_line.h"
#include "cli/exit_status.h"
#include "cli/known_accounts.h"
#include "locations/places/destination_rules.h"
#include "platform/paths.h"
#include "records/archive_files/archive_index_file.h"
#include "records/logs/console_log.h"
#include "records/texts/formatters.h"

namespace corvane::cli {

namespace {

struct ArchiveOptions {
    std::string destination;
    std::vector<std::string> accounts;
    std::vector<std::int64_t> years;
    std::int64_t minimumBytes = 0;
    std::optional<std::int64_t> maximumYear;
    std::optional<std::int64_t> limit;
    bool withoutIndex = false; // of bodies
};

// An archive run needs a scan; a first run makes it.
void provideScan(Session& session) {
    session.restoreLastScan();
    ScanFlow& scan = session.model().mail().scanFlow;
    if (scan.state().kind == MailScanState::Kind::finished) return;
    messageLine("还没有扫描结果，先扫描全部邮件。");
    scan.refreshAllMailData();
    session.waitUntilIdle();
    if (scan.state().kind == MailScanState::Kind::failed) throw CommandFailure(scan.state().text);
}

// Before it is chosen: the choice would be kept, and its folder made.
void requireAllowed(Session& session, const std::string& folder) {
    const ModelContext& context = session.context();
    PlaceLooks looks(context.platform, context.support.files(), {});
    if (const auto refusal = refusalOfArchive(looks, platform::canonicalPath(folder), context.mailRootPath,
                                              context.support.baseDirectory(false)))
        throw CommandFailure(*refusal);
}

// A new archive would be begun in the way of the old one, on another disk.
void tellOfArchiveThatIsAway(Session& session, const std::string& folder) {
    const std::string root = platform::canonicalPath(folder);
    const ArchiveLocation* const known = session.model().library().loader.location(root);
    if (known == nullptr || known->isConnected || known->count == 0) return;
    messageLine(fmt::format(
        "这里以前的归档（{} 封）现在不在，它的磁盘可能没有连接；新归档的邮件会写到现在的磁盘上：{}",
        known->count, root));
}

void select(Session& session, const ArchiveOptions& options) {
    CorvaneViewModel& model = session.model();
    ModelFilters& filters = model.mail().filters;
    filters.setFilterAccountPrefixes({options.accounts.begin(), options.accounts.end()});
    filters.set(&CandidateFilters::archiveFilterYears, {options.years.begin(), options.years.end()});
    filters.set(&CandidateFilters::minimumCandidateBytes, options.minimumBytes);
    filters.set(&CandidateFilters::transferMaxYear, options.maximumYear);
    model.archiving().destinations.setTransferDestination(platform::standardizedPath(options.destination));
    session.waitUntilIdle();
    if (options.limit) {
        model.archiving().ticks.selectFirstArchiveCandidates(static_cast<std::size_t>(*options.limit));
    } else {
        model.archiving().ticks.selectAllArchiveCandidates();
    }
}

EmailArchiveRunResult runToEnd(Session& session) {
    CorvaneViewModel& model = session.model();
    ProgressLine line;
    const auto shown = QObject::connect(&model.archiving().archiveRun, &ArchiveRunFlow::progressChanged, [&] {
        const auto& progress = model.archiving().archiveRun.emailArchiveProgress();
        if (progress) line.show(progress->statusText, progress->fraction());
    });
    std::optional<ArchiveRunFlow::RunOutcome> outcome;
    model.archiveSelectedEmails([&](ArchiveRunFlow::RunOutcome value) { outcome = std::move(value); });
    session.waitUntilIdle([&] { model.archiving().archiveRun.cancelEmailArchive(); });
    QObject::disconnect(shown);
    if (!outcome) throw CommandFailure("归档任务没有返回结果。");
    if (!*outcome) throw CommandFailure(outcome->error());
    return std::move(**outcome);
}

void printJson(const EmailArchiveRunResult& result) {
    JsonDocument document;
    document.object([&] {
        document.member("archivedCount", result.archivedCount);
        document.member("skippedAlreadyArchived", result.skippedAlreadyArchived);
        document.member("failedCount", result.failedCount);
        document.member("archivedBytes", result.archivedBytes);
        document.member("indexPath", result.indexURL.path());
        document.member("wasCancelled", result.wasCancelled);
        document.member("variantWarnings", result.variantWarnings);
        if (!result.archiveWarnings.empty()) document.member("archiveWarnings", result.archiveWarnings);
        document.objects("failures", result.failures, [&](const EmailArchiveFailure& failure) {
            document.member("subject", failure.subject);
            document.member("messageFilePath", failure.messageFileURL.path());
            document.member("reason", failure.reason);
        });
    });
    document.print();
}

void printReadable(const EmailArchiveRunResult& result) {
    printText(fmt::format("{}：归档 {} 封（{}），已在归档中 {} 封，失败 {} 封",
                          result.wasCancelled ? "已中止" : "归档完成", result.archivedCount,
                          formatByteCount(result.archivedBytes), result.skippedAlreadyArchived,
                          result.failedCount));
    for (const EmailArchiveFailure& failure : result.failures) {
        printText(fmt::format("失败：{} — {}（{}）", failure.subject, failure.reason,
                              failure.messageFileURL.path()));
    }
    for (const auto& warnings : {result.variantWarnings, result.archiveWarnings}) {
        for (const std::string& warning : warnings) printText(fmt::format("注意：{}", warning));
    }
    printText(fmt::format("索引：{}", result.indexURL.path()));
}

int runArchive(Session& session, const ArchiveOptions& options, bool json) {
    requireAllowed(session, options.destination);
    provideScan(session);
    requireAccounts(session, options.accounts, json);
    tellOfArchiveThatIsAway(session, options.destination);
    select(session, options);
    // Here it follows the run, whether or not that archived anything: an earlier one may have been killed.
    session.model().library().bodyTexts.setAutomaticRepair(false);
    EmailArchiveRunResult result;
    if (session.model().archiving().ticks.selectedArchiveMessageIDs().empty()) {
        const std::string root = platform::standardizedPath(options.destination);
        result.indexURL = FileURL(platform::joinPath(root, archiveIndexFileName));
    } else {
        result = runToEnd(session);
    }
    if (!options.withoutIndex && !wasInterrupted())
        fillBodyIndex(session, {.roots = {platform::standardizedPath(options.destination)},
                                .total = result.archivedCount,
                                .reloadWhenDone = false});
    if (json) {
        for (const std::string& warning : result.archiveWarnings) messageLine(warning);
        printJson(result);
    } else {
        printReadable(result);
    }
    return statusOf(result);
}

} // namespace

void addArchiveCommand(CommandSet& commands) {
    auto options = std::make_shared<ArchiveOptions>();
    CLI::App& archive = commands.add("archive", "把候选邮件归档到一个文件夹",
                                     {{{"archive --to /Volumes/归档/邮件", "归档全部候选邮件"},
                                       {"archive --to ~/邮件归档 --year 2014", "只归档 2014 年的邮件"}}});
    // As a variable that wasn't set: it would be the working folder.
    const CLI::Validator isNamed(
        [](std::string& path) {
            if (path.empty()) return std::string("没有写明文件夹");
            const bool isQuotedHome = path == "~" || path.starts_with("~/");
            return std::string(isQuotedHome ? "引号里的“~”不代表主文件夹，请写出完整的路径" : "");
        },
        "");
    archive.add_option("--to", options->destination, "归档文件夹")
        ->required()
        ->check(isNamed)
        ->type_name("DIR");
    archive.add_option("--account", options->accounts, "账户前缀")->allow_extra_args(false);
    archive.add_option("--year", options->years, "年份")->allow_extra_args(false);
    archive.add_option("--min-size", options->minimumBytes, "最小字节数")->check(notNegative());
    archive.add_option("--max-year", options->maximumYear, "这一年及以前");
    archive.add_option("--limit", options->limit, "最多归档的封数")->check(notNegative());
    archive.add_flag("--no-index", options->withoutIndex, "不建立正文索引");
    commands.setRun(archive,
                    [options](Session& session, bool json) { return runArchive(session, *options, json); });
}

} // namespace corvane::cli
