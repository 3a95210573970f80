#include "model/mail/scan/empty_scan.h"

#include <fmt/format.h>

#include "mailstore/folders/store_location.h"
#include "mailstore/index/year_counts.h"
#include "model/mail/store/mail_access.h"
#include "model/mail/store/mail_store.h"
#include "platform/files/directory.h"
#include "platform/files/file_look.h"

namespace corvane {

namespace {

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

EmptyScanMessage emptyScanFailureMessage(const MailStore& store, std::optional<std::int64_t> maximumYear) {
    if (platform::lookAtFile(store.rootPath).presence == platform::FileLook::Presence::absent)
        return {missingMailRootMessage};
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

} // namespace corvane
