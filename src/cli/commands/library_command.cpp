#include <cstdint>
#include <iterator>
#include <memory>
#include <string>
#include <utility>

#include <fmt/format.h>

#include "cli/commands/commands.h"
#include "cli/console/output.h"
#include "cli/console/text_table.h"
#include "cli/exit_status.h"
#include "cli/library_options.h"
#include "library/entry_handles.h"
#include "library/library_list.h"
#include "records/texts/formatters.h"

namespace corvane::cli {

namespace {

struct LibraryCommandOptions {
    LibraryFilterOptions filters;
    bool ascending = false;
    bool asGroups = false;
    bool asMenus = false;
};

void printEntriesJson(const LibraryList& list) {
    const ArchiveLibraryIndex& index = list.index();
    JsonDocument document;
    document.array([&] {
        for (const EntryPosition position : list.entries.entries()) {
            const ArchivedEntry& entry = index.entry(position);
            document.object([&] {
                document.membersOf(entry);
                document.member("entryID", entry.id());
                document.member("handle", entryHandle(entry.id()));
                document.member("accountKey", index.accountKey(position));
                document.member("accountTitle", index.accountTitle(index.accountKey(position)).value_or(""));
                document.member("subjectKey", index.subjectKey(position));
                document.member("threadKey", index.threadKey(position));
            });
        }
    });
    document.print();
}

void printEntries(const LibraryList& list) {
    const EntryHandles handles(list.index().entries());
    using enum TextTable::Align;
    TextTable table({left, left, right, left, left});
    table.row({"编号", "日期", "大小", "发件人", "主题"});
    for (const EntryPosition position : list.entries.entries()) {
        const ArchivedEmailRecord& record = list.index().entry(position).record;
        table.row({handles.shortest(position), formatMailDate(record.date), formatByteCount(record.sizeBytes),
                   record.sender.str(), record.subject.str()});
    }
    table.print();
}

void printGroupsJson(const LibraryList& list) {
    const ArchiveLibraryIndex& index = list.index();
    const GroupsView& view = list.groups.view();
    JsonDocument document;
    document.objects(view.groups, [&](const LibrarySubjectGroup& group) {
        document.member("key", groupKey(index, group));
        document.member("subject", groupSubject(index, view, group));
        document.member("count", std::int64_t{group.count});
        document.member("bytes", groupBytes(index, view, group));
        document.member("latest", index.entry(group.latest).id());
        document.key("entries");
        document.array([&] {
            for (const EntryPosition position : view.entries(group))
                document.value(index.entry(position).id());
        });
    });
    document.print();
}

void printGroups(const LibraryList& list) {
    const EntryHandles handles(list.index().entries());
    const GroupsView& view = list.groups.view();
    using enum TextTable::Align;
    TextTable table({left, left, right, right, left, left});
    table.row({"最新一封", "日期", "封数", "大小", "发件人", "主题"});
    for (const LibrarySubjectGroup& group : view.groups) {
        const ArchivedEmailRecord& latest = list.index().entry(group.latest).record;
        table.row({handles.shortest(group.latest), formatMailDate(latest.date),
                   fmt::format("{}", group.count), formatByteCount(groupBytes(list.index(), view, group)),
                   latest.sender.str(), groupSubject(list.index(), view, group).str()});
    }
    table.print();
}

void printMenusJson(const LibraryList& list) {
    JsonDocument document;
    document.object([&] {
        document.member("signature", list.index().signature());
        document.member("entries", std::ssize(list.index().entries()));
        document.member("totalBytes", list.index().totalBytes());
        document.objects("accountOptions", list.accountOptions,
                         [&](const LibraryAccountFilterOption& option) {
                             document.member("key", option.key);
                             document.member("title", option.title);
                             document.member("count", option.count);
                         });
        document.objects("locationOptions", list.locationOptions,
                         [&](const LibraryLocationFilterOption& option) {
                             document.member("rootPath", option.rootPath);
                             document.member("title", option.title);
                             document.member("count", option.count);
                             document.member("systemImage", option.systemImage);
                             document.member("isConnected", option.isConnected);
                         });
    });
    document.print();
}

void printMenus(const LibraryList& list) {
    using enum TextTable::Align;
    printText(fmt::format("共 {} 封，{}", list.index().size(), formatByteCount(list.index().totalBytes())));
    TextTable accounts({left, right, left});
    accounts.row({"账户", "封数", "key"});
    for (const LibraryAccountFilterOption& option : list.accountOptions)
        accounts.row({option.title, fmt::format("{}", option.count), option.key});
    accounts.print();
    TextTable locations({left, right, left, left});
    locations.row({"位置", "封数", "状态", "路径"});
    for (const LibraryLocationFilterOption& option : list.locationOptions) {
        locations.row({option.title, fmt::format("{}", option.count),
                       option.isConnected ? "已连接" : "未连接", option.rootPath});
    }
    locations.print();
}

void print(const LibraryList& list, const LibraryCommandOptions& options, bool json) {
    if (options.asMenus) return json ? printMenusJson(list) : printMenus(list);
    if (options.asGroups) return json ? printGroupsJson(list) : printGroups(list);
    json ? printEntriesJson(list) : printEntries(list);
}

int runLibrary(Session& session, const LibraryCommandOptions& options, bool json) {
    LibraryListInputs inputs{.index = loadLibraryIndex(session)};
    // For a script an empty list says the same.
    if (!json) requireKnown(*inputs.index, options.filters);
    inputs.filters = libraryFilters(session, options.filters);
    if (options.ascending) inputs.order = LibraryOrder::oldestFirst;
    print(*LibraryList::make(std::move(inputs)), options, json);
    return statusOfAnswer();
}

} // namespace

void addLibraryCommand(CommandSet& commands) {
    auto options = std::make_shared<LibraryCommandOptions>();
    CLI::App& library =
        commands.add("library", "已归档的邮件",
                     {{{"library --mailbox INBOX", "一个邮箱的已归档邮件，新邮件在前"},
                       {"library --groups --year 2014 --query 合同", "2014 年提到合同的邮件，按会话列出"}}});
    LibraryFilterOptions::addTo(library, options->filters);
    LibraryFilterOptions::addQueryTo(library, options->filters);
    library.add_flag("--ascending", options->ascending, "旧邮件在前");
    auto* groups = library.add_flag("--groups", options->asGroups, "按会话列出");
    library.add_flag("--options", options->asMenus, "只列出可以按哪些账户和位置筛选")->excludes(groups);
    commands.setRun(library,
                    [options](Session& session, bool json) { return runLibrary(session, *options, json); });
}

} // namespace corvane::cli
