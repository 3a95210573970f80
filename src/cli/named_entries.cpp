#include "cli/named_entries.h"

#include <unordered_set>

#include <fmt/format.h>

#include "library/entry_handles.h"
#include "records/formatters.h"
#include "text/hidden_characters.h"

namespace corvane::cli {

namespace {

// One line of a list that asks for a longer name.
std::string lineOf(const EntryHandles& handles, EntryPosition position, const ArchivedEntry& entry) {
    const ArchivedEmailRecord& record = entry.record;
    const std::string line =
        fmt::format("{}  {}  {}  {}  {}", handles.shortest(position),
                    record.date ? formatListDate(*record.date) : "日期未知", record.sender.view(),
                    record.subject.view(), entry.locationRootPath.view());
    return text::withVisibleSigns(line);
}

WrongUsage ambiguity(const EntryHandles& handles, const std::vector<ArchivedEntry>& entries,
                     const std::string& name, const std::vector<EntryPosition>& found) {
    std::string message = fmt::format("有 {} 封邮件符合 “{}”，请用更长的编号：", found.size(), name);
    for (const EntryPosition position : found)
        message += "\n  " + lineOf(handles, position, entries[position]);
    return WrongUsage(message);
}

} // namespace

void addNameArgument(CLI::App& command, std::string& name) {
    command.add_option("entry", name, "邮件：编号、entryID 或记录 id")->required()->type_name("MAIL");
}

void addNamesArgument(CLI::App& command, std::vector<std::string>& names) {
    command.add_option("entries", names, "邮件：编号、entryID 或记录 id")->required()->type_name("MAIL");
}

ArchivedEntry namedEntry(Session& session, const std::string& name) {
    return namedEntries(session, {name}).front();
}

std::vector<ArchivedEntry> namedEntries(Session& session, const std::vector<std::string>& names) {
    loadLibrary(session);
    const std::vector<ArchivedEntry>& all = *session.model().library().archivedEntries();
    const EntryHandles handles(all);
    std::vector<ArchivedEntry> named;
    std::unordered_set<EntryPosition> seen;
    for (const std::string& name : names) {
        const std::vector<EntryPosition> found = handles.find(name);
        if (found.empty()) throw CommandFailure("归档库中没有这封邮件。");
        if (found.size() > 1) throw ambiguity(handles, all, name, found);
        if (seen.insert(found.front()).second) named.push_back(all[found.front()]);
    }
    return named;
}

} // namespace corvane::cli
