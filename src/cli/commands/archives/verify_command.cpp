#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "archive/checks/archive_verification.h"
#include "cli/commands/archives/verified_readings.h"
#include "cli/commands/commands.h"
#include "cli/console/output.h"
#include "cli/console/progress_line.h"
#include "cli/exit_status.h"
#include "model/owned_platform.h"
#include "platform/files/layers/file_layer.h"
#include "platform/paths.h"
#include "platform/platform.h"
#include "records/texts/formatters.h"

namespace corvane::cli {

namespace {

struct VerifyOptions {
    std::string root;
    bool recordsHashes = false; // in records that have none
};

struct Finding {
    const char* key;
    const char* title;
    const std::vector<std::string>& paths;
};

std::vector<Finding> findingsOf(const ArchiveVerification& verification) {
    return {{"missing", "索引中有、磁盘上没有", verification.missing},
            {"sizeMismatch", "大小与索引不符", verification.sizeMismatch},
            {"altered", "内容与记录的校验值不符", verification.altered},
            {"unindexed", "磁盘上有、索引中没有", verification.unindexed},
            {"identityMismatch", "内容不是索引所说的邮件", verification.identityMismatch},
            {"duplicatePaths", "索引中重复的路径", verification.duplicatePaths},
            {"unreadable", "无法读取，情况未知", verification.unreadable}};
}

void printJson(const ArchiveVerification& verification) {
    JsonDocument document;
    document.object([&] {
        document.member("checked", verification.checked);
        document.member("bytes", verification.bytes);
        for (const Finding& finding : findingsOf(verification)) document.member(finding.key, finding.paths);
        document.member("unchecked", verification.unchecked);
    });
    document.print();
}

void printReadable(const ArchiveVerification& verification) {
    printText(fmt::format("已核对 {} 封，{}", verification.checked, formatByteCount(verification.bytes)));
    if (verification.recorded > 0) printText(fmt::format("已补记 {} 个校验值", verification.recorded));
    bool isClean = true;
    for (const Finding& finding : findingsOf(verification)) {
        for (const std::string& path : finding.paths) printText(fmt::format("{}：{}", finding.title, path));
        isClean = isClean && finding.paths.empty();
    }
    if (verification.unchecked > 0) {
        printText(fmt::format("{} 封没有校验值，只核对了大小和邮件头；用 --record 可补记。",
                              verification.unchecked));
    }
    if (isClean) printText("归档与索引完全一致。");
}

int runVerify(const VerifyOptions& options, const CommonOptions& common) {
    ProgressLine line;
    std::stop_source stop;
    const auto showProgress = [&](std::size_t checked, std::size_t all) {
        if (wasInterrupted()) stop.request_stop();
        line.show(fmt::format("已核对 {} / {}", checked, all),
                  all == 0 ? 1.0 : double(checked) / double(all));
    };
    std::optional<HashRecording> recording;
    const OwnedPlatform system = makeOwnedPlatform(common.home);
    if (options.recordsHashes) {
        recording = HashRecording{[&](const std::string& path) { system->markHidden(path); }};
    }
    const auto keep = [&](std::vector<ArchivedFileReading> readings) {
        keepReadings(*system, options.root, std::move(readings));
    };
    const ArchiveVerification verification =
        verifyArchive(platform::standardizedPath(options.root), showProgress, stop.get_token(),
                      platform::posixFileLayer(), recording, keep);
    if (verification.wasCancelled) throw Interrupted();
    if (common.json)
        printJson(verification);
    else
        printReadable(verification);
    return statusOf(verification);
}

} // namespace

void addVerifyCommand(CommandSet& commands) {
    auto options = std::make_shared<VerifyOptions>();
    CLI::App& verify = commands.add("verify", "重新读取整个归档并与索引核对",
                                    {{{"verify ~/邮件归档", "核对每个文件"},
                                      {"verify --record ~/邮件归档", "并为没有校验值的记录补记校验值"}}});
    verify.add_option("root", options->root, "归档文件夹")->required()->type_name("DIR");
    verify.add_flag("--record", options->recordsHashes, "为没有校验值的记录补记校验值");
    commands.setRunAlone(verify,
                         [options](const CommonOptions& common) { return runVerify(*options, common); });
}

} // namespace corvane::cli
