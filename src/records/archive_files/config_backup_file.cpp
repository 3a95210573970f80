#include "records/archive_files/config_backup_file.h"

#include <cerrno>
#include <cstddef>

#include <fmt/format.h>
#include <sys/stat.h>

#include "platform/files/layers/layer_reading.h"
#include "platform/settings_store.h"
#include "records/json/json_reader.h"
#include "records/json/json_writer.h"
#include "records/texts/error_reasons.h"
#include "records/texts/formatters.h"

namespace corvane {

namespace {

constexpr std::int64_t versionOfOurs = 1;
constexpr auto largestBytes = static_cast<std::int64_t>(platform::largestSettingsBytes);
constexpr std::size_t mostRoots = 1'000;
constexpr std::size_t mostRules = 100'000;
constexpr std::size_t mostPrefixes = 10'000;

// Absent, with errno, for a file that can't be read to its end.
std::optional<std::string> contentOf(platform::FileLayer& files, const std::string& path) {
    struct stat status{};
    const auto file = platform::openRegularFile(files, path, platform::FinalLink::follow, status);
    if (!file) return std::nullopt;
    std::string content;
    const auto isFull = [&] { return static_cast<std::int64_t>(content.size()) > largestBytes; };
    errno = status.st_size > largestBytes ? EFBIG : 0;
    if (errno == 0) {
        errno = platform::readPieces(files, file.get(), static_cast<std::size_t>(status.st_size),
                                     [&](std::string_view piece) {
                                         content += piece;
                                         return !isFull();
                                     });
    }
    if (errno == 0 && isFull()) errno = EFBIG;
    return errno == 0 ? std::optional(std::move(content)) : std::nullopt;
}

bool isTooLong(const CorvaneConfigBackup& backup) {
    return backup.knownLocationRoots.size() > mostRoots || backup.accountMergeRules.size() > mostRules ||
           backup.selectedAccountPrefixes.size() > mostPrefixes;
}

} // namespace

std::string encodeConfigBackup(const CorvaneConfigBackup& backup) {
    return encodePrettyJson(backup);
}

std::expected<CorvaneConfigBackup, std::string> readConfigBackup(platform::FileLayer& files,
                                                                 const std::string& path) {
    auto content = contentOf(files, path);
    if (!content) return std::unexpected(systemErrorReason(errno));
    try {
        auto backup = JsonReader().readTaking<CorvaneConfigBackup>(std::move(*content));
        if (backup.version != versionOfOurs)
            return std::unexpected(fmt::format("备份的版本是 {}，这个版本的 Corvane 不认识", backup.version));
        if (isTooLong(backup)) return std::unexpected("其中的清单过长");
        return backup;
    } catch (const JsonError&) {
        return std::unexpected("它不是 Corvane 的配置备份，或者内容已损坏");
    }
}

std::string configBackupSummary(const CorvaneConfigBackup& backup) {
    std::string summary = fmt::format("备份时间：{}\n归档位置：{} 个", formatListDate(backup.exportedAt),
                                      backup.knownLocationRoots.size());
    if (backup.destinationPath) summary += fmt::format("\n默认目的地：{}", *backup.destinationPath);
    if (!backup.accountMergeRules.empty())
        summary += fmt::format("\n账号合并规则：{}", backup.accountMergeRules.size());
    return summary;
}

} // namespace corvane
