// Which mailboxes are trash or junk, by the names that they have in the systems and languages that Mail
// meets. Pure; any thread.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <string_view>

namespace corvane::mailstore {

// The names in their normalized form.
const std::set<std::string, std::less<>>& trashJunkMailboxNames();

// Trimmed, in lower case, without one closing ".mbox".
std::string normalizedMailboxName(std::string_view name);

// By the last component of the url: a folder inside the trash isn't trash.
bool isTrashOrJunkMailbox(std::string_view mailboxURL);

// One of them that lies where servers have theirs: in no other mailbox, or in "INBOX" or "[Gmail]". Of
// another one a person may be the maker, and Mail's search finds what is in it.
bool isServersTrashOrJunk(std::string_view mailboxURL);

} // namespace corvane::mailstore
