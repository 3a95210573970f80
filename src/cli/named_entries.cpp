#include "cli/named_entries.h"

#include <string>
#include <unordered_set>
#include <utility>

#include <fmt/format.h>

#include "cli/mails/entry_source.h"
#include "records/texts/formatters.h"
#include "text/hidden_characters.h"

namespace corvane::cli {

namespace {

// One line of a list that asks for a longer name.
std::string lineOf(EntrySource& source, const ArchivedEntry& entry) {
    const ArchivedEmailRecord& record = entry.record;
    const std::string line =
        fmt::format("{}  {}  {}  {}  {}", source.shortestHandle(entry), formatMailDate(record.date),
                    record.sender.view(), record.subject.view(), entry.locationRootPath.view());
    return text::withVisibleSigns(line);
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

ArchivedEntry namedEntry(EntrySource& source, const std::string& name) {
    const std::vector<ArchivedEntry> found = source.find(name);
    if (found.empty()) throw CommandFailure("归档库中没有这封邮件。");
    if (found.size() == 1) return found.front();
    std::string message = fmt::format("有 {} 封邮件符合 “{}”，请用更长的编号：", found.size(), name);
    for (const ArchivedEntry& entry : found) message += "\n  " + lineOf(source, entry);
    throw WrongUsage(message);
}

std::vector<ArchivedEntry> namedEntries(Session& session, const std::vector<std::string>& names) {
    return askEntries(session, [&](EntrySource& source) {
        std::vector<ArchivedEntry> named;
        std::unordered_set<std::string> seen;
        for (const std::string& name : names) {
            ArchivedEntry entry = namedEntry(source, name);
            if (seen.insert(entry.id()).second) named.push_back(std::move(entry));
        }
        return named;
    });
}

} // namespace corvane::cli
