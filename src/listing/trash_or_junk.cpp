#include "listing/trash_or_junk.h"

#include "mailstore/folders/trash_junk_mailboxes.h"

namespace corvane {

bool TrashOrJunk::holds(const SharedText& mailbox) {
    if (last_ == nullptr || !mailbox.sharesWith(*last_)) {
        holdsLast_ = holdsName(mailbox);
        last_ = &mailbox;
    }
    return holdsLast_;
}

bool TrashOrJunk::holdsName(const SharedText& mailbox) {
    const auto [entry, isNew] = known_.try_emplace(mailbox.view(), false);
    if (isNew)
        entry->second =
            mailstore::trashJunkMailboxNames().contains(mailstore::normalizedMailboxName(mailbox));
    return entry->second;
}

} // namespace corvane
