#include <algorithm>
#include <memory>
#include <string>

#include <fmt/format.h>

#include "cli/commands/commands.h"
#include "cli/console/output.h"
#include "cli/console/text_table.h"
#include "cli/exit_status.h"
#include "platform/paths.h"
#include "records/formatters.h"

namespace corvane::cli {

namespace {

struct LibraryOptions {
    std::string location;
    std::string mailbox;
    bool ascending = false;
};

bool goesFirst(const ArchivedEntry& a, const ArchivedEntry& b, bool ascending) {
    if (a.record.date.has_value() != b.record.date.has_value()) return a.record.date.has_value();
    if (a.record.date == b.record.date) return a.record.subject < b.record.subject;
    return ascending ? *a.record.date < *b.record.date : *a.record.date > *b.record.date;
}

std::vector<const ArchivedEntry*> selectEntries(const std::vector<ArchivedEntry>& entries,
                                                const LibraryOptions& options) {
    std::vector<const ArchivedEntry*> selected;
    for (const ArchivedEntry& entry : entries) {
        const bool isThere = options.location.empty() || entry.locationRootPath == options.location;
        if (isThere && (options.mailbox.empty() || entry.record.mailbox == options.mailbox))
            selected.push_back(&entry);
    }
    std::stable_sort(selected.begin(), selected.end(),
                     [&](const auto* a, const auto* b) { return goesFirst(*a, *b, options.ascending); });
    return selected;
}

int runLocations(Session& session, bool json) {
    loadLibrary(session);
    const auto& locations = session.model().library().archiveLocations();
    if (json) {
        JsonDocument document;
        document.value(locations);
        document.print();
        return done;
    }
    TextTable table(
        {TextTable::Align::left, TextTable::Align::right, TextTable::Align::left, TextTable::Align::left});
    table.row({"位置", "邮件", "状态", "路径"});
    for (const ArchiveLocation& location : locations) {
        table.row({location.displayName, fmt::format("{}", location.count),
                   location.isConnected ? "已连接" : "未连接", location.rootPath});
    }
    table.print();
    return done;
}

int runLibrary(Session& session, const LibraryOptions& options, bool json) {
    loadLibrary(session);
    const SharedEntryList entries = session.model().library().archivedEntries();
    const auto selected = selectEntries(*entries, options);
    if (json) {
        JsonDocument document;
        document.array([&] {
            for (const ArchivedEntry* entry : selected) {
                document.object([&] {
                    document.membersOf(*entry);
                    document.member("entryID", entry->id());
                });
            }
        });
        document.print();
        return done;
    }
    TextTable table(
        {TextTable::Align::left, TextTable::Align::right, TextTable::Align::left, TextTable::Align::left});
    table.row({"日期", "大小", "发件人", "主题"});
    for (const ArchivedEntry* entry : selected) {
        const ArchivedEmailRecord& record = entry->record;
        table.row({record.date ? formatListDate(*record.date) : "日期未知", formatByteCount(record.sizeBytes),
                   record.sender.str(), record.subject.str()});
    }
    table.print();
    return done;
}

} // namespace

void addLibraryCommands(CommandSet& commands) {
    commands.setRun(commands.add("locations", "已知的归档位置",
                                 {{{"locations", "列出归档位置和它们的状态"},
                                   {"locations --json", "同样的内容，给脚本用"}}}),
                    &runLocations);
    auto options = std::make_shared<LibraryOptions>();
    CLI::App& library =
        commands.add("library", "已归档的邮件",
                     {{{"library --mailbox INBOX", "一个邮箱的已归档邮件"},
                       {"library --ascending --location ~/邮件归档", "一个归档位置，旧邮件在前"}}});
    library.add_option("--location", options->location, "归档位置")->type_name("DIR");
    library.add_option("--mailbox", options->mailbox, "邮箱名称");
    library.add_flag("--ascending", options->ascending, "旧邮件在前");
    commands.setRun(library,
                    [options](Session& session, bool json) { return runLibrary(session, *options, json); });
}

} // namespace corvane::cli
