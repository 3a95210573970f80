// What the index is asked about the accounts of the store, each known by the UUID in the urls of its
// mailboxes. A question that fails contributes nothing: the result is empty or leaves the account out. Those
// for the accounts themselves, their counts and schemes throw MailIndexQueryError (timedOut) at the time
// limit, so that an account isn't taken for one without mail; an address that can't be inferred in time is
// an unknown one. Every question is a process of its own: background work; any thread.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "mailstore/mail_store_context.h"
#include "records/mail_account.h"

namespace corvane::mailstore {

// All UUIDs in a text, in upper case. Pure.
std::vector<std::string> extractUUIDs(std::string_view text);

// UUIDs in the mailbox urls of the index, ascending.
std::vector<std::string> accountUUIDsFromEnvelopeIndex(const MailStoreContext& context,
                                                       const std::string& envelopeIndexPath);

// Messages by UUID, 0 for an account without any.
std::map<std::string, std::int64_t> queryMessageCountPerUUID(const MailStoreContext& context,
                                                             const std::vector<std::string>& uuids,
                                                             const std::string& envelopeIndexPath);

// Scheme of the mailbox urls by UUID, in lower case, such as "imap", "ews" or "local"; empty when unknown.
using SchemesByUUID = std::map<std::string, std::string>;

SchemesByUUID querySchemes(const MailStoreContext& context, const std::vector<std::string>& uuids,
                           const std::string& envelopeIndexPath);

// The address that most messages of an account are sent to; nullopt when there is none.
std::optional<std::string> queryTopRecipient(const MailStoreContext& context, const std::string& uuid,
                                             const std::string& envelopeIndexPath);

// Addresses by UUID: the usual sender of what was sent, else the usual recipient of the inbox.
std::map<std::string, std::string> queryEmailsFromSentMessages(const MailStoreContext& context,
                                                               const std::vector<std::string>& uuids,
                                                               const std::string& envelopeIndexPath);

// The mailboxes with mail, by account UUID, largest first.
std::map<std::string, std::vector<FolderInfo>> queryFoldersByAccount(const MailStoreContext& context,
                                                                     const std::string& rootPath);

} // namespace corvane::mailstore
