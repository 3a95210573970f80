#include "cli/library_options.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include "cli/known_accounts.h"
#include "cli/unreadable_archives.h"
#include "platform/paths.h"
#include "text/charsets/encoding.h"
#include "text/trim.h"

namespace corvane::cli {

namespace {

// A root as the library knows it; a path may be written in other ways.
std::string rootOf(Session& session, const std::string& location) {
    const LibraryLoader& library = session.model().library().loader;
    if (library.location(location) != nullptr) return location;
    const std::string standard = platform::standardizedPath(location);
    return library.location(standard) != nullptr ? standard : platform::canonicalPath(location);
}

std::shared_ptr<const SharedTextSet> search(Session& session, const std::string& query) {
    auto ids = std::make_shared<SharedTextSet>();
    session.model().library().bodyTexts.searchArchive(query, [&](ArchiveSearchResult found) {
        *ids = std::move(found.ids);
        tellUnsearchedArchives(found.unreadableRoots, found.unpreparedRoots);
    });
    session.waitUntilIdle();
    return ids;
}

// "2014" or "2012-2014"; absent for other texts.
std::optional<YearSpan> yearSpan(std::string_view text) {
    const std::size_t dash = text.find('-');
    const auto first = text::parseInteger(text.substr(0, dash));
    const auto last = dash == std::string_view::npos ? first : text::parseInteger(text.substr(dash + 1));
    if (!first || !last || *first < 1 || *last < *first) return std::nullopt;
    return YearSpan{*first, *last};
}

} // namespace

void LibraryFilterOptions::addTo(CLI::App& command, LibraryFilterOptions& options) {
    const auto add = [&](const char* name, std::optional<std::string>& value, const char* help) {
        // The parser would take an empty value of an optional for none.
        return command.add_option_function<std::string>(
            name, [&value](const std::string& given) { value = given; }, help);
    };
    add("--account", options.account, "账户，library --options 给出的 key")->type_name("KEY");
    add("--location", options.location, "归档位置")->type_name("DIR");
    add("--mailbox", options.mailbox, "邮箱名称")->type_name("NAME");
    command
        .add_option_function<std::string>(
            "--year", [&](const std::string& given) { options.years = yearSpan(given); },
            "一年，或几年：2012-2014")
        ->check([](const std::string& given) { return yearSpan(given) ? "" : "不是年份：" + given; }, "")
        ->type_name("YEAR");
}

void LibraryFilterOptions::addQueryTo(CLI::App& command, LibraryFilterOptions& options) {
    command.add_option("--query", options.query, "要找的文字")->type_name("TEXT");
}

SharedLibraryIndex loadLibraryIndex(Session& session) {
    loadLibrary(session);
    LibraryIndexFlow& flow = session.model().library().index;
    flow.rebuildLibraryIndexIfNeeded();
    session.waitUntilIdle();
    return flow.index();
}

void requireKnown(const ArchiveLibraryIndex& index, const LibraryFilterOptions& options) {
    const auto require = [](const std::optional<std::string>& asked, const std::set<std::string>& known,
                            std::string_view what) {
        if (!asked || asked->empty() || known.contains(*asked)) return;
        throw CommandFailure(unknownNameText(what, *asked, known));
    };
    std::set<std::string> accounts;
    for (const LibraryAccountFilterOption& option : index.accountOptions()) accounts.insert(option.key);
    require(options.account, accounts, "归档里没有这个账户");
    std::set<std::string> mailboxes;
    for (const ArchivedEntry& entry : index.entries()) mailboxes.insert(entry.record.mailbox.str());
    require(options.mailbox, mailboxes, "归档里没有这个邮箱");
}

LibraryFilters libraryFilters(Session& session, const LibraryFilterOptions& options) {
    LibraryFilters filters;
    filters.libraryAccountFilter = options.account;
    filters.libraryMailboxFilter = options.mailbox;
    filters.years = options.years;
    if (options.location) filters.libraryLocationFilter = rootOf(session, *options.location);
    const std::string query(text::trimWhitespaceAndNewlines(options.query));
    if (!query.empty()) filters.matchedIDs = search(session, query);
    return filters;
}

} // namespace corvane::cli
