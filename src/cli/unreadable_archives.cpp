#include "cli/unreadable_archives.h"

#include <optional>
#include <string>

#include <fmt/format.h>
#include <sys/stat.h>

#include "platform/files/layers/file_layer.h"
#include "platform/paths.h"
#include "platform/threads/limited_answer.h"
#include "records/archive_files/archive_index_file.h"
#include "records/logs/console_log.h"
#include "records/texts/error_reasons.h"

namespace corvane::cli {

namespace {

std::string reasonAgainst(const std::string& index) {
    platform::FileLayer& files = platform::posixFileLayer();
    struct stat status{};
    if (files.stat(index, status) == 0 && !S_ISREG(status.st_mode)) return "它不是普通的文件";
    const ArchiveIndexReading reading = readArchiveIndexFile(files, index);
    using enum ArchiveIndexReading::State;
    if (reading.state == damaged) return "内容已损坏，corvane-cli rebuild 可以重建它";
    if (reading.state != couldNotLook) return "刚才没能读出";
    return reading.isInCloud ? "它还在云端" : systemErrorReason(reading.error);
}

} // namespace

void tellUnreadableArchive(const std::string& root) {
    const std::string index = platform::joinPath(root, archiveIndexFileName);
    const auto reason = platform::limitedAnswer<std::string>(
        platform::placeLimit, [index](platform::JobLimit&) { return reasonAgainst(index); });
    messageLine(
        fmt::format("归档的索引读不了（{}），没有算上它的邮件：{}", reason.value_or("没有响应"), index));
}

void tellUnsearchedArchives(const std::vector<std::string>& unreadable,
                            const std::vector<std::string>& unprepared) {
    for (const std::string& root : unreadable)
        messageLine(fmt::format("没能搜索这个归档，结果里没有它的邮件：{}", root));
    for (const std::string& root : unprepared)
        messageLine(
            fmt::format("这个归档的邮件大多还搜索不到，运行 corvane-cli index 为它建立搜索索引：{}", root));
}

} // namespace corvane::cli
