#include "model/mail/store/mail_access.h"

#include <fmt/format.h>

#include "mailstore/folders/store_location.h"
#include "platform/files/directory.h"
#include "platform/files/file_look.h"

namespace corvane {

namespace {

using Presence = platform::FileLook::Presence;

} // namespace

bool canReadMailData(const std::string& mailRootPath) {
    const Presence root = platform::lookAtFile(mailRootPath).presence;
    if (root != Presence::there) return root == Presence::absent;
    // Without it the newest version isn't known, and the index of another one may be looked for in vain.
    if (!platform::listDirectory(mailRootPath, platform::HiddenEntries::skip)) return false;
    const std::string index = mailstore::envelopeIndexPath(mailRootPath);
    const Presence found = platform::lookAtFile(index).presence;
    return found == Presence::absent || (found == Presence::there && platform::canReadAByte(index));
}

platform::PathAccess mailDataObstacle(const std::string& mailRootPath) {
    platform::PathAccess root = platform::obstacleOnTheWay(mailRootPath);
    if (!root.isThere || !root.canRead || !root.canEnter) return root;
    return platform::obstacleOnTheWay(mailstore::envelopeIndexPath(mailRootPath));
}

void FullDiskAccess::refreshFullDiskAccessState() {
    struct Found {
        std::optional<platform::PathAccess> obstacle;
    };

    isChecking_ = true;
    Q_EMIT checkStarted();
    task_.start(
        TaskPriority::userInitiated, context_.mailRootPath,
        [](const std::string& root, const TaskHandle&) {
            return canReadMailData(root) ? Found() : Found{mailDataObstacle(root)};
        },
        [this](Found found) {
            isChecking_ = false;
            obstacle_ = std::move(found.obstacle);
            const bool canRead = !obstacle_;
            context_.startupLog.mark(
                fmt::format("FDA check canRead={} root={}", canRead, context_.mailRootPath));
            if (needsFullDiskAccess_ == canRead) {
                needsFullDiskAccess_ = !canRead;
                Q_EMIT needsFullDiskAccessChanged();
            }
            context_.startupLog.mark(fmt::format("FDA needsFullDiskAccess={}", needsFullDiskAccess_));
            Q_EMIT checked();
        });
}

} // namespace corvane
