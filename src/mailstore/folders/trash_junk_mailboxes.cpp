#include "mailstore/folders/trash_junk_mailboxes.h"

#include <fmt/format.h>

#include "mailstore/index/quiet_database.h"
#include "mailstore/index/sqlite_connection.h"
#include "mailstore/reader_logs.h"
#include "text/case.h"
#include "text/encoding.h"
#include "text/split.h"
#include "text/trim.h"

namespace corvane::mailstore {

namespace {

bool isTrashOrJunk(std::string_view mailboxURL) {
    const std::string decoded = text::percentDecoded(mailboxURL).value_or(std::string(mailboxURL));
    const auto parts = text::splitNonEmpty(decoded, '/');
    return !parts.empty() && trashJunkMailboxNames().contains(normalizedMailboxName(parts.back()));
}

std::set<std::int64_t> readTrashAndJunk(const std::string& name, ReadOnlyConnection::NameKind kind) {
    const ReadOnlyConnection connection(name, kind);
    Statement mailboxes(connection, "SELECT ROWID, url FROM mailboxes;");
    std::set<std::int64_t> ids;
    while (mailboxes.step()) {
        const auto url = mailboxes.text(1);
        if (url && isTrashOrJunk(*url)) ids.insert(mailboxes.integer(0));
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

const std::set<std::string, std::less<>>& trashJunkMailboxNames() {
    static const std::set<std::string, std::less<>> names = {
        "deleted messages", "deleted items", "trash", "trash messages", "bin",  "已删除邮件",
        "已删除",           "废纸篓",        "junk",  "junk e-mail",    "spam", "bulk mail",
        "垃圾邮件"};
    return names;
}

std::string normalizedMailboxName(std::string_view name) {
    const std::string lowered = text::lowercased(text::trimWhitespaceAndNewlines(name));
    std::string_view normalized = lowered;
    if (normalized.ends_with(".mbox")) normalized.remove_suffix(5);
    return std::string(text::trimWhitespaceAndNewlines(normalized));
}

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
