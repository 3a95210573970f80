#include "mailstore/index/downloads_by_year.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <utility>

#include <fmt/format.h>

#include "mailstore/folders/mailbox_url.h"
#include "mailstore/folders/message_file_index.h"
#include "mailstore/folders/store_location.h"
#include "mailstore/folders/trash_junk_mailboxes.h"
#include "mailstore/index/index_sql.h"
#include "mailstore/sqlite/shell_queries.h"
#include "text/case.h"

namespace corvane::mailstore {

namespace {

struct Copy {
    std::int64_t year = 0;
    std::int64_t message = 0;
    // What is here of it: `some` is a part, or nobody can look. Of the copies of a message the one of which
    // most is here comes first.
    enum class Part { whole, some, none } part = Part::none;

    friend auto operator<=>(const Copy&, const Copy&) = default;
};

Copy::Part partOf(MessageFileIndex& files, std::string_view mailboxURL, std::int64_t rowID) {
    if (files.existingFilePath(mailboxURL, rowID)) return Copy::Part::whole;
    const bool mayBeHere = files.hasPartialFile(mailboxURL, rowID) || files.isOutOfSight(mailboxURL, rowID);
    return mayBeHere ? Copy::Part::some : Copy::Part::none;
}

// Counts the messages whose first copy has no file.
void countUndownloaded(std::vector<Copy> copies, DownloadsByYear& downloads) {
    std::ranges::sort(copies);
    const auto isSameMessage = [](const Copy& a, const Copy& b) {
        return a.year == b.year && a.message == b.message;
    };
    const auto repeated = std::ranges::unique(copies, isSameMessage);
    copies.erase(repeated.begin(), repeated.end());
    for (const Copy& copy : copies) {
        if (copy.part != Copy::Part::whole) ++downloads.undownloaded[copy.year];
        if (copy.part == Copy::Part::some) ++downloads.partial[copy.year];
    }
}

// The same by the year of receipt, where a part of a message in any year makes all of its years partial. A
// whole copy stands for none of the others: what the server has under the same id may be another text, such
// as that of a mailing list.
void countByReceipt(std::vector<Copy> copies, DownloadsByYear& downloads) {
    std::ranges::sort(copies, {},
                      [](const Copy& copy) { return std::tuple(copy.message, copy.year, copy.part); });
    for (auto first = copies.begin(); first != copies.end();) {
        const auto end = std::find_if(first, copies.end(),
                                      [&](const Copy& copy) { return copy.message != first->message; });
        const Copy::Part most = std::ranges::min(std::ranges::subrange(first, end), {}, &Copy::part).part;
        auto& years = most == Copy::Part::some ? downloads.partialByReceipt : downloads.aloneByReceipt;
        for (auto copy = first; copy != end; ++copy) {
            const auto next = std::next(copy);
            const bool isLastOfYear = next == end || next->year != copy->year;
            if (isLastOfYear && copy->part != Copy::Part::whole) ++years[copy->year];
        }
        first = end;
    }
}

// Gathers what the rows of the index say.
class IndexRows {
  public:
    // Without prefixes rows of all accounts count.
    IndexRows(const std::string& rootPath, const std::vector<std::string>& accountURLPrefixes)
      : files_(rootPath) {
        for (const std::string& prefix : accountURLPrefixes) accounts_.push_back(withoutImapScheme(prefix));
    }

    void add(JsonRow& row) {
        const auto rowID = row.integer("rid");
        const auto message = row.integer("mid");
        const auto url = row.text("url");
        const auto year = row.integer("y");
        const auto receivedYear = row.integer("ry");
        if (!rowID || !url || (!year && !receivedYear)) return;
        const Counts counts = countsOf(*url);
        if (counts == Counts::none) return;
        const Copy::Part part = partOf(files_, *url, *rowID);
        const bool hasMessage = message && *message != 0;
        if (hasMessage && year && counts == Counts::all)
            copies_.push_back({.year = *year, .message = *message, .part = part});
        const std::int64_t found = receivedYear.value_or(year.value_or(0));
        if (part == Copy::Part::whole) downloads_.storedRows.push_back({*rowID, found});
        if (hasMessage)
            byReceipt_.push_back({.year = found, .message = *message, .part = part});
        else if (part != Copy::Part::whole)
            ++(part == Copy::Part::some ? downloads_.partialByReceipt : downloads_.aloneByReceipt)[found];
    }

    DownloadsByYear result() {
        countUndownloaded(std::move(copies_), downloads_);
        countByReceipt(std::move(byReceipt_), downloads_);
        return std::move(downloads_);
    }

  private:
    static constexpr std::size_t uuidLength = 36;

    // Of what a mailbox counts.
    enum class Counts { none, byReceipt, all };

    Counts countsOf(std::string_view url) {
        const auto [known, isNew] = counts_.try_emplace(std::string(url), Counts::none);
        if (isNew && isAsked(url) && !isServersTrashOrJunk(url))
            known->second = isTrashOrJunkMailbox(url) ? Counts::byReceipt : Counts::all;
        return known->second;
    }

    // By the part of the url that names an account: a mailbox may be named like another one.
    [[nodiscard]] bool isAsked(std::string_view url) const {
        const std::size_t scheme = url.find("://");
        if (accounts_.empty() || scheme == std::string_view::npos) return true;
        const std::string_view rest = url.substr(scheme + 3);
        const std::string_view account = rest.substr(0, rest.find('/'));
        const auto isIt = [&](const std::string& each) { return text::containsIgnoringCase(account, each); };
        return account.size() < uuidLength || std::ranges::any_of(accounts_, isIt);
    }

    MessageFileIndex files_;
    std::vector<std::string> accounts_; // as urls name them
    std::unordered_map<std::string, Counts> counts_;
    std::vector<Copy> copies_;
    std::vector<Copy> byReceipt_;
    DownloadsByYear downloads_;
};

} // namespace

std::optional<DownloadsByYear> downloadsByYear(const MailStoreContext& context, const std::string& rootPath,
                                               const std::vector<std::string>& accountURLPrefixes) {
    if (!canQueryEnvelopeIndex(context, rootPath)) return DownloadsByYear();
    const std::string index = envelopeIndexPath(rootPath);
    const std::string hasDate = fmt::format("({} > 0 OR m.date_received > 0)", messageDateExpression);
    const std::string sql =
        fmt::format("SELECT m.ROWID AS rid, m.message_id AS mid, mb.url AS url,\n"
                    "       CASE WHEN {} > 0 THEN {} END AS y,\n       CASE WHEN "
                    "m.date_received > 0 THEN {} END AS ry\n"
                    "FROM messages m\nJOIN mailboxes mb ON mb.ROWID = m.mailbox\nWHERE {} {};",
                    messageDateExpression, localYearOf(messageDateExpression), localYearOf("m.date_received"),
                    hasDate, accountCondition(accountURLPrefixes));
    IndexRows rows(rootPath, accountURLPrefixes);
    if (!runJSONRows(context, sql, index, [&](JsonRow& row) { rows.add(row); })) return std::nullopt;
    return rows.result();
}

std::optional<YearCounts> undownloadedYearCounts(const MailStoreContext& context, const std::string& rootPath,
                                                 const std::vector<std::string>& accountURLPrefixes) {
    auto downloads = downloadsByYear(context, rootPath, accountURLPrefixes);
    if (!downloads) return std::nullopt;
    return std::move(downloads->undownloaded);
}

} // namespace corvane::mailstore
