// Where Mail's store lies below its root folder (`<home>/Library/Mail`) and whether it can be read. All
// functions only look; all may be called from any thread.
#pragma once

#include <string>

#include "mailstore/mail_store_context.h"

namespace corvane::mailstore {

// Name of the newest version folder: the largest number behind "V"; "V10" when there is none.
std::string latestMailVersionDirectoryName(const std::string& rootPath);

// Path of the newest version folder, which need not exist.
std::string latestMailVersionDirectory(const std::string& rootPath);

// Path of the database "Envelope Index" of the newest version folder, which need not exist.
std::string envelopeIndexPath(const std::string& rootPath);

// Whether this process may read the index: the test for the permission of full disk access.
bool canReadEnvelopeIndex(const std::string& rootPath);

// Whether both the index and the program that queries it are there.
bool canQueryEnvelopeIndex(const MailStoreContext& context, const std::string& rootPath);

} // namespace corvane::mailstore
