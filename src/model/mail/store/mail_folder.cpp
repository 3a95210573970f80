#include "model/mail/store/mail_folder.h"

#include "mailstore/folders/store_location.h"
#include "platform/files/directory.h"
#include "platform/paths.h"

namespace corvane {

bool holdsMailStore(const std::string& folder) {
    return !mailVersionIn(folder).empty();
}

std::string mailVersionIn(const std::string& folder) {
    std::string name = mailstore::latestMailVersionDirectoryName(folder);
    return platform::isDirectory(platform::joinPath(folder, name)) ? name : std::string();
}

} // namespace corvane
