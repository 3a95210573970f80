// The urls of mailboxes in the index ("imap://<account>/<path>", percent-encoded), the folders that they name
// and the files in them. The urls come from a foreign database and may hold anything: nothing here leaves the
// newest version folder of the store. Functions that look at the disk say so; all may run on any thread.
//
// Folders: <version>/<account>/<name>.mbox/.../<any one folder or none>/Data/<bucket
// digits>/Messages/<row>.emlx
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "records/file_url.h"

namespace corvane::mailstore {

// The account's part of the mailbox urls: the account's key without "imap://".
std::string withoutImapScheme(std::string_view accountURLPrefix);

// The "Data" folder of a mailbox, looked up on the disk; nullopt when it isn't there.
std::optional<std::string> mailboxDataRoot(std::string_view mailboxURL, const std::string& rootPath);

struct MailboxPlace {
    std::optional<std::string> dataRoot{};
    // Without a data root: a folder on the way can't be looked into, so nobody knows what is in the mailbox.
    bool isOutOfSight = false;
};

// When the newest version folder is known already.
MailboxPlace mailboxPlaceBelow(const std::string& versionDirectory, std::string_view mailboxURL);

// The digits of the row's thousands in reverse, one folder each: 123456 gives "3/2/1", below 1000 it is
// empty.
std::string messageBucketPath(std::int64_t rowID);

// "<data root>/<bucket>/Messages".
std::string messagesFolder(const std::string& dataRoot, std::int64_t rowID);

// The name shown: the last component of the path without ".mbox", "Mail" when there is none.
std::string mailboxName(std::string_view mailboxURL);

// The name by the folders of a file: the last one below the root that is neither ".mbox" nor "Messages", such
// as "Data" or a bucket digit; "Mail" when there is none.
std::string mailboxName(const FileURL& messageFile, const std::string& rootPath);

// The nearest ".mbox" folder above a file; nullopt without one.
std::optional<std::string> mailboxFolder(const FileURL& messageFile);

// Whether that folder's Info.plist says that the mailbox was imported into Mail. Reads a file;
// false when it can't be read.
bool importedMailboxFlag(const FileURL& messageFile);

// Account keys and names, by the account's part of a mailbox url or by the account's folder in a file's path.
using AccountNames = std::map<std::string, std::string>;

// The entry of the account that a mailbox url belongs to; nullopt without one.
std::optional<std::pair<std::string, std::string>> accountOfMailbox(std::string_view mailboxURL,
                                                                    const AccountNames& accountNamesByPrefix);

// The same for a message file.
std::optional<std::pair<std::string, std::string>> accountInfo(const FileURL& messageFile,
                                                               const AccountNames& accountNamesByPrefix);

} // namespace corvane::mailstore
