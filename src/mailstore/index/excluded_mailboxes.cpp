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

std::set<std::int64_t> readTrashAndJunk(const MailStoreContext& context, const std::string& name,
                                        ReadOnlyConnection::NameKind kind) {
    const ReadLimit limit{std::chrono::steady_clock::now() + context.longQueryTimeLimit, context.stop};
    const ReadOnlyConnection connection(name, kind, limit);
    Statement mailboxes(connection, "SELECT ROWID, url FROM mailboxes;");
    std::set<std::int64_t> ids;
    while (mailboxes.step()) {
        const auto url = mailboxes.text(1);
        if (url && isTrashOrJunkMailbox(*url)) ids.insert(mailboxes.integer(0));
        if (ids.size() > mostExcluded)
            throw SqliteError(SqliteError::Step::read, SQLITE_TOOBIG, "too many mailboxes");
    }
    if (mailboxes.status() != SQLITE_DONE) {
        throw SqliteError(SqliteError::Step::read, mailboxes.status(), sqlite3_errmsg(connection.handle()));
    }
    return ids;
}

std::set<std::int64_t> readTrashAndJunkQuietly(const MailStoreContext& context, const std::string& path) {
    using NameKind = ReadOnlyConnection::NameKind;
    if (!consistsOfFiles(path)) throw SqliteError(SqliteError::Step::open, SQLITE_CANTOPEN, noDatabaseFile);
    const QuietDatabase database(path, context.platform.temporaryDirectory());
    if (database.isURI()) {
        auto ids = readTrashAndJunk(context, database.name(), NameKind::uri);
        if (!database.wasDisturbed()) return ids;
        return readTrashAndJunk(context, path, NameKind::path);
    }
    return readTrashAndJunk(context, database.name(), NameKind::path);
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

} // namespace

std::optional<std::set<std::int64_t>> trashAndJunkMailboxIDs(const MailStoreContext& context,
                                                             const std::string& envelopeIndexPath) {
    try {
        return readTrashAndJunkQuietly(context, envelopeIndexPath);
    } catch (const SqliteError& error) {
        debugLog(context.support, fmt::format("trashAndJunkMailboxIDs sqlite3_{} failed error={}",
                                              functionOf(error.step()), error.what()));
        if (error.isOfTheMoment()) return std::nullopt;
        return std::set<std::int64_t>();
    }
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
