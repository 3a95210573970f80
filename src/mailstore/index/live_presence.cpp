#include "mailstore/index/live_presence.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <locale>
#include <set>
#include <sstream>
#include <unordered_map>

#include <fmt/format.h>

#include "mailstore/folders/store_location.h"
#include "mailstore/index/excluded_mailboxes.h"
#include "mailstore/index/index_sql.h"
#include "mailstore/index/wanted_identifiers.h"
#include "mailstore/sqlite/shell_queries.h"
#include "mime/message_identifiers.h"
#include "platform/files/writing/temporary_file.h"
#include "platform/threads/parallel.h"
#include "records/texts/missing_fields.h"
#include "text/case.h"
#include "text/trim.h"

namespace corvane::mailstore {

namespace {

constexpr double widestDateDifference = 172'800;
// Each question reads all messages, so there are few of them; SQLite holds a list of this length twice.
constexpr std::size_t senderListBytes = 8'000'000;

std::string loweredAndTrimmed(std::string_view text) {
    return text::lowercased(text::trimWhitespaceAndNewlines(text));
}

// The subject by which messages are compared; empty where there is none.
std::string comparedSubject(std::string_view subject) {
    std::string compared = loweredAndTrimmed(subject);
    if (isMissingSubject(compared)) compared.clear();
    return compared;
}

// Nullopt when the mailboxes couldn't be read: a message in the trash would count as present.
std::optional<std::string> exclusionOf(const MailStoreContext& context, const std::string& index) {
    const auto trashAndJunk = trashAndJunkMailboxIDs(context, index);
    if (!trashAndJunk) return std::nullopt;
    return mailboxExclusion(*trashAndJunk);
}

// What the shell's answer shows of an address: it ends at a NUL.
std::string_view shownPart(std::string_view address) {
    return address.substr(0, address.find('\0'));
}

// The quoted senders in lists that each fit a question.
std::vector<std::string> senderLists(const std::vector<ContentPresenceTarget>& targets) {
    std::set<std::string> senders;
    for (const ContentPresenceTarget& target : targets)
        senders.insert(loweredAndTrimmed(target.senderAddress));
    senders.erase("");
    std::vector<std::string> lists;
    for (const std::string& sender : senders) {
        const std::string quoted = fmt::format("'{}'", quotedText(sender));
        if (lists.empty() || lists.back().size() + quoted.size() > senderListBytes)
            lists.push_back(quoted);
        else
            lists.back().append(",").append(quoted);
    }
    return lists;
}

std::string contentQuery(const std::string& senderList, const std::string& exclusion) {
    return fmt::format("SELECT LOWER(a.address) AS sender,\n"
                       "       {0} AS d,\n"
                       "       COALESCE(m.subject_prefix,'') || COALESCE(s.subject,'') AS subject\n"
                       "FROM messages m\n"
                       "JOIN mailboxes mb ON mb.ROWID = m.mailbox\n"
                       "LEFT JOIN subjects s ON s.ROWID = m.subject\n"
                       "LEFT JOIN addresses a ON a.ROWID = m.sender\n"
                       "WHERE {0} > 0 AND LOWER(a.address) IN ({1}) {2};",
                       messageDateExpression, senderList, exclusion);
}

// The number that a text begins with, whatever the user's locale. Not by std::from_chars, which some standard
// libraries lack for floating point.
std::optional<double> leadingNumber(std::string_view text) {
    if (text.empty() || text.front() == '+') return std::nullopt;
    std::istringstream stream{std::string(text.substr(0, text.find_first_not_of("0123456789.-+eE")))};
    stream.imbue(std::locale::classic());
    double value = 0;
    return stream >> value ? std::optional(value) : std::nullopt;
}

// A number, or a text that is one.
std::optional<double> dateOf(JsonRow& row) {
    if (const auto number = row.integer("d")) return static_cast<double>(*number);
    const auto text = row.text("d");
    return text ? leadingNumber(*text) : std::nullopt;
}

// The dates of live messages by sender and subject.
class LiveContents {
  public:
    void add(JsonRow& row) {
        const auto sender = row.text("sender");
        const auto date = dateOf(row);
        if (!sender || !date) return;
        dates_[key(*sender, comparedSubject(row.text("subject").value_or("")))].push_back(*date);
    }

    void finish() {
        for (auto& [place, dates] : dates_) std::ranges::sort(dates);
    }

    [[nodiscard]] bool holds(const ContentPresenceTarget& target) const {
        const auto found = dates_.find(
            key(shownPart(loweredAndTrimmed(target.senderAddress)), comparedSubject(target.subject)));
        if (found == dates_.end()) return false;
        const auto date = static_cast<double>(target.date.time_since_epoch().count());
        const auto earliest = std::ranges::lower_bound(found->second, date - widestDateDifference);
        return earliest != found->second.end() && *earliest <= date + widestDateDifference;
    }

  private:
    static std::string key(std::string_view sender, std::string_view subject) {
        return fmt::format("{}\x1F{}", sender, subject);
    }

    std::unordered_map<std::string, std::vector<double>> dates_;
};

} // namespace

std::optional<std::vector<bool>>
liveMessageIdentifierPresence(const MailStoreContext& context, const std::string& rootPath,
                              const std::vector<std::string_view>& identifiers) {
    if (!canQueryEnvelopeIndex(context, rootPath)) return std::nullopt;
    if (std::ranges::all_of(identifiers, [](std::string_view each) { return each.empty(); }))
        return std::vector<bool>(identifiers.size());
    const std::string index = envelopeIndexPath(rootPath);
    const auto exclusion = exclusionOf(context, index);
    if (!exclusion) return std::nullopt;
    const std::string sql =
        fmt::format("SELECT g.message_id_header AS messageId\n"
                    "FROM messages m\n"
                    "LEFT JOIN message_global_data g ON g.message_id = m.message_id\n"
                    "WHERE g.message_id_header IS NOT NULL AND g.message_id_header != '' {};",
                    *exclusion);
    std::optional<platform::TemporaryFile> rows;
    std::optional<WantedIdentifiers> wanted;
    platform::parallelCalls([&] { rows = runRowsQuery(context, sql, index); },
                            [&] { wanted.emplace(identifiers); });
    if (!rows) return std::nullopt;
    return wanted->inRows(rows->path());
}

std::optional<bool> hasMessageIDHeaders(const MailStoreContext& context, const std::string& rootPath) {
    if (!canQueryEnvelopeIndex(context, rootPath)) return std::nullopt;
    std::optional<std::int64_t> columns;
    const bool isWhole =
        runJSONRows(context,
                    "SELECT COUNT(*) AS held FROM pragma_table_info('message_global_data') "
                    "WHERE name='message_id_header';",
                    envelopeIndexPath(rootPath), [&](JsonRow& row) { columns = row.integer("held"); });
    if (!isWhole || !columns) return std::nullopt;
    return *columns > 0;
}

std::optional<SharedTextSet> liveMessagePresenceByContent(const MailStoreContext& context,
                                                          const std::string& rootPath,
                                                          const std::vector<ContentPresenceTarget>& targets) {
    if (!canQueryEnvelopeIndex(context, rootPath)) return std::nullopt;
    const std::string index = envelopeIndexPath(rootPath);
    const auto exclusion = exclusionOf(context, index);
    if (!exclusion) return std::nullopt;
    LiveContents contents;
    for (const std::string& list : senderLists(targets)) {
        if (!runJSONRows(context, contentQuery(list, *exclusion), index,
                         [&](JsonRow& row) { contents.add(row); }))
            return std::nullopt;
    }
    contents.finish();
    SharedTextSet present;
    for (const ContentPresenceTarget& target : targets) {
        if (contents.holds(target)) present.insert(target.key);
    }
    return present;
}

std::expected<std::string, NoOriginal> liveMessageOriginalIDHeader(const MailStoreContext& context,
                                                                   const std::string& rootPath,
                                                                   std::string_view messageIdentifier) {
    const auto identifier = mime::normalizedMessageIdentifier(messageIdentifier);
    if (!identifier) return std::unexpected(NoOriginal::notThere);
    if (!canQueryEnvelopeIndex(context, rootPath)) return std::unexpected(NoOriginal::noAnswer);
    const std::string index = envelopeIndexPath(rootPath);
    const auto exclusion = exclusionOf(context, index);
    if (!exclusion) return std::unexpected(NoOriginal::noAnswer);
    const std::string sql =
        fmt::format("SELECT g.message_id_header AS hdr\n"
                    "FROM messages m\n"
                    "JOIN mailboxes mb ON mb.ROWID = m.mailbox\n"
                    "LEFT JOIN message_global_data g ON g.message_id = m.message_id\n"
                    "WHERE lower(trim(g.message_id_header, '<> ' || char(13, 10, 9))) = '{}' {}\n"
                    "ORDER BY {} DESC\n"
                    "LIMIT 1;",
                    quotedText(*identifier), *exclusion, messageDateExpression);
    std::optional<std::string> header;
    const bool isWhole = runJSONRows(context, sql, index, [&](JsonRow& row) {
        const auto text = row.text("hdr");
        if (!header && text && !text->empty()) header = std::string(*text);
    });
    if (!isWhole) return std::unexpected(NoOriginal::noAnswer);
    if (!header) return std::unexpected(NoOriginal::notThere);
    return *header;
}

} // namespace corvane::mailstore
