#include "mailstore/index/excluded_mailboxes.h"

#include <fmt/format.h>

#include "mailstore/folders/trash_junk_mailboxes.h"
#include "mailstore/index/quiet_database.h"
#include "mailstore/index/sqlite_connection.h"
#include "mailstore/reader_logs.h"

namespace corvane::mailstore {

namespace {

std::set<std::int64_t> readTrashAndJunk(const std::string& name, ReadOnlyConnection::NameKind kind) {
    const ReadOnlyConnection connection(name, kind);
    Statement mailboxes(connection, "SELECT ROWID, url FROM mailboxes;");
    std::set<std::int64_t> ids;
    while (mailboxes.step()) {
        const auto url = mailboxes.text(1);
        if (url && isTrashOrJunkMailbox(*url)) ids.insert(mailboxes.integer(0));
    }
    return ids;
}

std::set<std::int64_t> readTrashAndJunkQuietly(const std::string& path, const std::string& temporaryFolder) {
    using NameKind = ReadOnlyConnection::NameKind;
    const QuietDatabase database(path, temporaryFolder);
    if (database.isURI()) {
        auto ids = readTrashAndJunk(database.name(), NameKind::uri);
        if (!database.wasDisturbed()) return ids;
        return readTrashAndJunk(path, NameKind::path);
    }
    return readTrashAndJunk(database.name(), NameKind::path);
}

} // namespace

std::set<std::int64_t> trashAndJunkMailboxIDs(const MailStoreContext& context,
                                              const std::string& envelopeIndexPath) {
    try {
        return readTrashAndJunkQuietly(envelopeIndexPath, context.platform.temporaryDirectory());
    } catch (const SqliteError& error) {
        const char* step = error.step() == SqliteError::Step::open ? "open_v2" : "prepare_v2";
        debugLog(context.support,
                 fmt::format("trashAndJunkMailboxIDs sqlite3_{} failed error={}", step, error.what()));
        return {};
    }
}

std::string mailboxExclusion(const std::set<std::int64_t>& mailboxIDs) {
    if (mailboxIDs.empty()) return {};
    return fmt::format("AND m.mailbox NOT IN ({})", fmt::join(mailboxIDs, ","));
}

} // namespace corvane::mailstore
