#include "model/mail/scan/unplugged_disk.h"

#include <utility>

namespace corvane {

ScannedDisk::ScannedDisk(std::string rootPath)
  : rootPath_(std::move(rootPath))
  , begin_(platform::lookAtFile(rootPath_)) {}

bool ScannedDisk::hasStore() const {
    return begin_.presence == platform::FileLook::Presence::there;
}

bool ScannedDisk::wasUnplugged() const {
    const platform::FileLook now = platform::lookAtFile(rootPath_);
    return now.presence != begin_.presence || now.device != begin_.device || now.inode != begin_.inode;
}

} // namespace corvane
