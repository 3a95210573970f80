// Who the accounts of the store are: which UUID folders hold mail, which address belongs to each, which are
// local archives of another account, and which look like a redundant copy of another one. Nothing here throws
// for a source that fails: it contributes nothing. Every step is a process of its own: background work; any
// thread.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "mailstore/mail_store_context.h"
#include "records/mail_account.h"

namespace corvane::mailstore {

// The accounts with mail, as `sortAccounts` orders them. Empty without a usable index.
std::vector<MailAccount> queryAccounts(const MailStoreContext& context, const std::string& rootPath);

// The mailboxes with mail, by account UUID, largest first.
std::map<std::string, std::vector<FolderInfo>> queryFoldersByAccount(const MailStoreContext& context,
                                                                     const std::string& rootPath);

// Warnings by `urlPrefix` for accounts of whose messages another, not smaller account has at least 70 %.
std::map<std::string, std::string> analyzeDuplication(const MailStoreContext& context,
                                                      const std::vector<MailAccount>& accounts,
                                                      const std::string& rootPath);

// Accounts by address, each followed by its local archives; local archives of no account at the end.
std::vector<MailAccount> sortAccounts(std::vector<MailAccount> accounts);

// All UUIDs in a text, in upper case.
std::vector<std::string> extractUUIDs(std::string_view text);

// UUIDs in the mailbox urls of the index, ascending.
std::vector<std::string> accountUUIDsFromEnvelopeIndex(const MailStoreContext& context,
                                                       const std::string& envelopeIndexPath);

// Messages by UUID; a UUID whose count can't be had is left out.
std::map<std::string, std::int64_t> queryMessageCountPerUUID(const MailStoreContext& context,
                                                             const std::vector<std::string>& uuids,
                                                             const std::string& envelopeIndexPath);

// Addresses by UUID: the usual sender of what was sent, else the usual recipient of the inbox.
std::map<std::string, std::string> queryEmailsFromSentMessages(const MailStoreContext& context,
                                                               const std::vector<std::string>& uuids,
                                                               const std::string& envelopeIndexPath);

// Addresses by UUID from the system's accounts database, else from property lists of the mailboxes.
std::map<std::string, std::string> queryEmailsFromAccountsDB(const MailStoreContext& context,
                                                             const std::vector<std::string>& uuids);

// The name of an address's domain: "me@host.org" gives "Host".
std::string displayDomain(std::string_view address);

} // namespace corvane::mailstore
