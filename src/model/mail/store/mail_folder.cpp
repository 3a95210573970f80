#include "model/mail/store/mail_folder.h"

#include "mailstore/folders/store_location.h"
#include "platform/files/directory.h"

namespace corvane {

bool holdsMailStore(const std::string& folder) {
    return platform::isDirectory(mailstore::latestMailVersionDirectory(folder));
}

} // namespace corvane
