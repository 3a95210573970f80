#include "mailstore/folders/trash_junk_mailboxes.h"

#include "text/case.h"
#include "text/charsets/encoding.h"
#include "text/split.h"
#include "text/trim.h"

namespace corvane::mailstore {

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

bool isTrashOrJunkMailbox(std::string_view mailboxURL) {
    const std::string decoded = text::percentDecoded(mailboxURL).value_or(std::string(mailboxURL));
    const auto parts = text::splitNonEmpty(decoded, '/');
    return !parts.empty() && trashJunkMailboxNames().contains(normalizedMailboxName(parts.back()));
}

bool isServersTrashOrJunk(std::string_view mailboxURL) {
    if (!isTrashOrJunkMailbox(mailboxURL)) return false;
    const std::string decoded = text::percentDecoded(mailboxURL).value_or(std::string(mailboxURL));
    const auto parts = text::splitNonEmpty(decoded, '/');
    // Scheme, account and name.
    if (parts.size() <= 3) return true;
    const std::string above = normalizedMailboxName(parts[2]);
    return parts.size() == 4 && (above == "inbox" || above == "[gmail]" || above == "[google mail]");
}

} // namespace corvane::mailstore
