#include "screens/settings/backup_file_choice.h"

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

#include <fmt/format.h>

#include "locations/places/folder_listing.h"
#include "platform/files/directory.h"
#include "platform/paths.h"
#include "records/archive_files/config_backup_file.h"
#include "records/texts/formatters.h"
#include "screens/archive/places/folder_texts.h"
#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

namespace fs = std::filesystem;

constexpr qsizetype pathLimit = 5000;
constexpr std::string_view ending = ".corvanebackup";
// Nobody keeps more, and somebody else's folder may hold anything.
constexpr std::size_t mostEntries = 100'000;
constexpr int mostNames = 1'000;

QString pathOf(const std::string& path, const std::string& home) {
    return screens::shownPath(screens::shownLine(path, pathLimit), screens::wholeText(home));
}

// A name that nothing in the folder has.
std::string freeFile(const std::string& folder) {
    const std::string_view stem =
        configBackupExportName.substr(0, configBackupExportName.size() - ending.size());
    std::string path = platform::joinPath(folder, configBackupExportName);
    std::error_code error;
    for (int number = 2;
         number < mostNames && fs::symlink_status(path, error).type() != fs::file_type::not_found; ++number)
        path = platform::joinPath(folder, fmt::format("{} {}{}", stem, number, ending));
    return path;
}

struct BackupFile {
    std::string path;
    fs::file_time_type changedAt;
};

std::optional<BackupFile> newestBackup(const std::string& folder, const std::stop_token& stop,
                                       std::error_code& error) {
    std::optional<BackupFile> newest;
    std::size_t seen = 0;
    fs::directory_iterator entry(folder, error);
    for (const fs::directory_iterator end;
         !error && entry != end && seen < mostEntries && !stop.stop_requested();
         entry.increment(error), ++seen) {
        if (!isBackupName(entry->path().filename().native())) continue;
        std::error_code ignored;
        if (!entry->is_regular_file(ignored)) continue;
        const auto changedAt = entry->last_write_time(ignored);
        if (!newest || changedAt > newest->changedAt) newest = {entry->path().native(), changedAt};
    }
    return newest;
}

} // namespace

bool isBackupName(std::string_view name) {
    return name.ends_with(ending) || platform::lastPathComponent(name) == configBackupFileName;
}

FolderChoice backupExportChoice(const FolderQuestion& question, const std::stop_token&) {
    FolderChoice choice;
    choice.useText = QStringLiteral("导出");
    const std::error_code obstacle = writingObstacle(question.path);
    if (obstacle) {
        choice.note = QStringLiteral("不能导出到这里");
        choice.noteLine = screens::folderErrorText(obstacle, screens::FolderAction::write);
        return choice;
    }
    choice.canUse = true;
    choice.path = freeFile(question.path);
    choice.note =
        QStringLiteral("保存为「%1」").arg(screens::shownLine(platform::lastPathComponent(choice.path)));
    choice.noteLine = pathOf(question.path, question.home);
    return choice;
}

FolderChoice backupImportChoice(const FolderQuestion& question, const std::stop_token& stop) {
    FolderChoice choice;
    choice.useText = QStringLiteral("导入…");
    std::error_code error;
    const auto found = newestBackup(question.path, stop, error);
    if (!found) {
        choice.note = error ? QStringLiteral("不能查看这个文件夹") : QStringLiteral("这里没有配置备份");
        choice.noteLine =
            error ? screens::folderErrorText(error, screens::FolderAction::open)
                  : QStringLiteral("选导出时用的文件夹，或一个归档文件夹；也可以在上面输入文件的路径");
        return choice;
    }
    choice.canUse = true;
    choice.path = found->path;
    choice.note =
        QStringLiteral("找到「%1」").arg(screens::shownLine(platform::lastPathComponent(found->path)));
    const auto changedAt =
        std::chrono::floor<std::chrono::seconds>(fs::file_time_type::clock::to_sys(found->changedAt));
    choice.noteLine = QStringLiteral("%1 保存").arg(screens::wholeText(formatListDate(changedAt)));
    return choice;
}

} // namespace corvane
