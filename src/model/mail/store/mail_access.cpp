#include "model/mail/store/mail_access.h"

#include <fmt/format.h>

#include "mailstore/folders/store_location.h"
#include "mailstore/index/year_counts.h"
#include "model/mail/store/mail_store.h"
#include "platform/files/directory.h"
#include "platform/files/file_look.h"

namespace corvane {

namespace {

using Presence = platform::FileLook::Presence;

EmptyScanMessage yearMessage(const MailStore& store, std::int64_t maximumYear) {
    const auto oldest = mailstore::queryOldestIndexedYear(store.context, store.rootPath);
    if (oldest && maximumYear < *oldest) {
        return {fmt::format("邮件库中最早的邮件来自 {0} 年，没有 {1} 年及以前的邮件记录。如需处理 {0} "
                            "年的邮件，请将年份调整为 {0} 年。",
                            *oldest, maximumYear),
                true};
    }
    return {fmt::format("Mail 目录和索引文件都可以读取，但没有从索引中定位到 {} "
                        "年及以前的候选邮件。请完全退出并重新打开本 App 后再扫描。",
                        maximumYear)};
}

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

EmptyScanMessage emptyScanFailureMessage(const MailStore& store, std::optional<std::int64_t> maximumYear) {
    if (platform::lookAtFile(store.rootPath).presence == Presence::absent) return {missingMailRootMessage};
    const bool canRead = canReadMailData(store.rootPath);
    if (canRead && !platform::fileExists(mailstore::envelopeIndexPath(store.rootPath))) {
        return {"Mail 目录可以读取，但没有找到 Mail 索引文件。请先打开 Apple Mail "
                "等待邮件列表加载完成，然后重新扫描。"};
    }
    if (!canRead) {
        return {"Mail 数据目录存在，但当前 App 没有读取权限。请在“系统设置 > 隐私与安全性 > "
                "完全磁盘访问权限”中开启本 App，然后完全退出并重新打开 App。"};
    }
    if (maximumYear) return yearMessage(store, *maximumYear);
    return {"Mail 目录和索引文件都可以读取，但没有定位到可扫描的邮件文件。请先打开 Apple Mail "
            "确认邮件列表可见，再重新扫描。"};
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
