#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "cli/commands/commands.h"
#include "cli/console/output.h"
#include "cli/console/progress_line.h"
#include "cli/exit_status.h"
#include "cli/library_options.h"
#include "cli/named_entries.h"
#include "library/entry_choice.h"
#include "platform/paths.h"
#include "records/logs/console_log.h"
#include "records/texts/formatters.h"

namespace corvane::cli {

namespace {

struct ExportOptions {
    std::vector<std::string> entries; // empty: all
    LibraryFilterOptions filters;
    bool wholeThreads = false;
    ExportFormat format = ExportFormat::mbox;
    std::string target;
};

std::vector<EntryPosition> namedPositions(Session& session, const ArchiveLibraryIndex& index,
                                          const std::vector<std::string>& names) {
    std::vector<EntryPosition> positions;
    for (const ArchivedEntry& entry : namedEntries(session, names)) {
        if (const auto position = index.position(entry.id())) positions.push_back(*position);
    }
    return positions;
}

ExportSelection select(Session& session, const ExportOptions& options) {
    const SharedLibraryIndex index = loadLibraryIndex(session);
    requireKnown(*index, options.filters);
    const bool isNamed = !options.entries.empty();
    std::vector<EntryPosition> named;
    if (isNamed) named = namedPositions(session, *index, options.entries);
    ExportSelection selection{index->input().entries,
                              chosenEntries(index, libraryFilters(session, options.filters),
                                            isNamed ? &named : nullptr, options.wholeThreads)};
    if (selection.positions.empty()) throw CommandFailure("没有符合条件的归档邮件可以导出。");
    return selection;
}

void printExport(const ExportResult& result) {
    JsonDocument document;
    document.object([&] {
        document.member("exported", result.exported);
        document.member("bytes", result.bytes);
        document.objects("failures", result.failures, [&](const ExportFailure& failure) {
            document.member("entryID", failure.entryID);
            document.member("reason", failure.reason);
        });
    });
    document.print();
}

void printExportReadably(const ExportResult& result, const std::string& path) {
    printText(
        fmt::format("已导出 {} 封邮件（{}）到 {}", result.exported, formatByteCount(result.bytes), path));
    for (const ExportFailure& failure : result.failures)
        messageLine(fmt::format("没有导出 {}：{}", failure.entryID, failure.reason));
}

ExportResult runFlow(Session& session, ExportSelection selection, ExportFormat format,
                     const std::string& path) {
    MailExportFlow& flow = session.model().library().mailExport;
    ProgressLine line;
    const auto shown = QObject::connect(&flow, &MailExportFlow::changed, [&] {
        const auto& progress = flow.progress();
        if (!progress || progress->total == 0) return;
        line.show(fmt::format("正在导出 {}/{}", progress->done, progress->total),
                  static_cast<double>(progress->done) / static_cast<double>(progress->total));
    });
    flow.start(std::move(selection), format, path);
    session.waitUntilIdle([&] { flow.cancel(); });
    QObject::disconnect(shown);
    if (!flow.outcome()) throw Interrupted();
    if (!*flow.outcome()) throw CommandFailure(flow.outcome()->error());
    return **flow.outcome();
}

int runExport(Session& session, const ExportOptions& options, bool json) {
    const std::string path = platform::standardizedPath(options.target);
    const ExportResult result = runFlow(session, select(session, options), options.format, path);
    if (json)
        printExport(result);
    else
        printExportReadably(result, path);
    return statusOf(result);
}

} // namespace

void addExportCommand(CommandSet& commands) {
    static const std::map<std::string, ExportFormat> formats = {
        {"mbox", ExportFormat::mbox}, {"eml", ExportFormat::eml}, {"zip", ExportFormat::zip}};
    auto options = std::make_shared<ExportOptions>();
    CLI::App& mails = commands.add(
        "export", "把已归档的邮件逐字节导出，可以再导入 Mail",
        {{{"export 3fa9c1 --thread --format mbox --to 合同.mbox", "一封邮件连同整个对话，供 Mail 导入"},
          {"export --query 合同 --format eml --to ~/桌面/合同", "提到合同的邮件，按年份存成 .eml"}}});
    addNamesArgument(mails, options->entries);
    mails.get_option("entries")->required(false);
    LibraryFilterOptions::addTo(mails, options->filters);
    LibraryFilterOptions::addQueryTo(mails, options->filters);
    mails.add_flag("--thread", options->wholeThreads, "连同它们的整个对话");
    mails
        .add_option(
            "--format", options->format,
            "mbox：一个供 Mail 导入的文件；eml：一个按年份存放 .eml 的文件夹；zip：同样的内容，一个 ZIP 文件")
        ->required()
        ->transform(oneOf(formats));
    mails.add_option("--to", options->target, "新文件（mbox、zip）或新文件夹（eml）")
        ->required()
        ->type_name("FILE");
    commands.setRun(mails,
                    [options](Session& session, bool json) { return runExport(session, *options, json); });
}

} // namespace corvane::cli
