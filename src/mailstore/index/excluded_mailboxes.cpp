#include "mailstore/index/excluded_mailboxes.h"

#include <chrono>
#include <cstddef>
#include <string_view>

#include <fmt/format.h>

#include "mailstore/folders/trash_junk_mailboxes.h"
#include "mailstore/index/index_sql.h"
#include "mailstore/reader_logs.h"
#include "mailstore/sqlite/quiet_database.h"
#include "mailstore/sqlite/sqlite_connection.h"

namespace corvane::mailstore {

namespace {

// Far above what anybody has, and few enough for one statement.
constexpr std::size_t mostExcluded = 20'000;

using MailboxTest = bool (*)(std::string_view url);

std::set<std::int64_t> readMailboxes(const MailStoreContext& context, MailboxTest isWanted,
                                     const std::string& name, ReadOnlyConnection::NameKind kind) {
    const ReadLimit limit{std::chrono::steady_clock::now() + context.longQueryTimeLimit, context.stop};
    const ReadOnlyConnection connection(name, kind, limit);
    Statement mailboxes(connection, "SELECT ROWID, url FROM mailboxes;");
    std::set<std::int64_t> ids;
    while (mailboxes.step()) {
        const auto url = mailboxes.text(1);
        if (url && isWanted(*url)) ids.insert(mailboxes.integer(0));
        if (ids.size() > mostExcluded)
            throw SqliteError(SqliteError::Step::read, SQLITE_TOOBIG, "too many mailboxes");
    }
    if (mailboxes.status() != SQLITE_DONE) {
        throw SqliteError(SqliteError::Step::read, mailboxes.status(), sqlite3_errmsg(connection.handle()));
    }
    return ids;
}

std::set<std::int64_t> readMailboxesQuietly(const MailStoreContext& context, MailboxTest isWanted,
                                            const std::string& path) {
    using NameKind = ReadOnlyConnection::NameKind;
    if (!consistsOfFiles(path)) throw SqliteError(SqliteError::Step::open, SQLITE_CANTOPEN, noDatabaseFile);
    const QuietDatabase database(path, context.platform.temporaryDirectory());
    if (database.isURI()) {
        auto ids = readMailboxes(context, isWanted, database.name(), NameKind::uri);
        if (!database.wasDisturbed()) return ids;
        return readMailboxes(context, isWanted, path, NameKind::path);
    }
    return readMailboxes(context, isWanted, database.name(), NameKind::path);
}

std::string_view functionOf(SqliteError::Step step) {
    switch (step) {
    case SqliteError::Step::open:
        return "open_v2";
    case SqliteError::Step::prepare:
        return "prepare_v2";
    case SqliteError::Step::read:
        break;
    }
    return "step";
}

// `log` is the name of the question there.
std::optional<std::set<std::int64_t>> mailboxIDs(const MailStoreContext& context, MailboxTest isWanted,
                                                 const std::string& envelopeIndexPath, std::string_view log) {
    try {
        return readMailboxesQuietly(context, isWanted, envelopeIndexPath);
    } catch (const SqliteError& error) {
        debugLog(context.support,
                 fmt::format("{} sqlite3_{} failed error={}", log, functionOf(error.step()), error.what()));
        if (error.isOfTheMoment()) return std::nullopt;
        return std::set<std::int64_t>();
    }
}

} // namespace

std::optional<std::set<std::int64_t>> trashAndJunkMailboxIDs(const MailStoreContext& context,
                                                             const std::string& envelopeIndexPath) {
    return mailboxIDs(context, &isTrashOrJunkMailbox, envelopeIndexPath, "trashAndJunkMailboxIDs");
}

std::optional<std::set<std::int64_t>> junkMailboxIDs(const MailStoreContext& context,
                                                     const std::string& envelopeIndexPath) {
    return mailboxIDs(context, &isJunkMailbox, envelopeIndexPath, "junkMailboxIDs");
}

std::string mailboxExclusion(const std::set<std::int64_t>& mailboxIDs) {
    if (mailboxIDs.empty()) return {};
    return fmt::format("AND m.mailbox NOT IN ({})", fmt::join(mailboxIDs, ","));
}

std::optional<std::string> messagesWhere(const std::string& condition, const MailStoreContext& context,
                                         const std::string& envelopeIndexPath,
                                         const std::vector<std::string>& accountURLPrefixes) {
    const auto trashAndJunk = trashAndJunkMailboxIDs(context, envelopeIndexPath);
    if (!trashAndJunk) return std::nullopt;
    return fmt::format("FROM messages m\n"
                       "JOIN mailboxes mb ON mb.ROWID = m.mailbox\n"
                       "WHERE {} {} {}",
                       condition, accountCondition(accountURLPrefixes), mailboxExclusion(*trashAndJunk));
}

} // namespace corvane::mailstore
