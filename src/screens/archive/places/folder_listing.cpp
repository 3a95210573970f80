#include "screens/archive/places/folder_listing.h"

#include <algorithm>
#include <filesystem>
#include <numeric>
#include <system_error>

#include <unistd.h>

#include <QCollator>
#include <QLocale>

#include "platform/paths.h"
#include "records/error_reasons.h"
#include "screens/texts/shown_text.h"

namespace corvane::screens {

namespace {

namespace fs = std::filesystem;

QString reasonOf(const std::error_code& error) {
    if (error == std::errc::no_such_file_or_directory) return QStringLiteral("没有这个文件夹。");
    if (error == std::errc::not_a_directory) return QStringLiteral("这不是文件夹。");
    if (error == std::errc::permission_denied || error == std::errc::operation_not_permitted)
        return QStringLiteral("没有权限打开这个文件夹。");
    return QStringLiteral("%1。").arg(shownLine(systemErrorReason(error.value())));
}

void sortByName(std::vector<ListedFolder>& folders) {
    QCollator collator{QLocale(QLocale::Chinese, QLocale::China)};
    collator.setNumericMode(true);
    std::vector<QCollatorSortKey> keys;
    keys.reserve(folders.size());
    for (const ListedFolder& folder : folders) keys.push_back(collator.sortKey(folder.name));
    std::vector<std::size_t> order(folders.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(), [&](std::size_t left, std::size_t right) {
        const int compared = keys[left].compare(keys[right]);
        // Names that look the same keep one order.
        return compared != 0 ? compared < 0 : folders[left].path < folders[right].path;
    });
    std::vector<ListedFolder> sorted;
    sorted.reserve(folders.size());
    for (const std::size_t position : order) sorted.push_back(std::move(folders[position]));
    folders = std::move(sorted);
}

bool isOneComponent(const std::string& name) {
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos &&
           name.find('\0') == std::string::npos;
}

} // namespace

FolderListing listFolders(const std::string& path, const std::stop_token& stop) {
    FolderListing listing{path, {}, {}};
    std::error_code error;
    fs::directory_iterator entry(path, error);
    for (const fs::directory_iterator end; !error && entry != end; entry.increment(error)) {
        if (stop.stop_requested()) return listing;
        const std::string name = entry->path().filename().string();
        std::error_code ignored;
        if (name.starts_with('.') || !entry->is_directory(ignored)) continue;
        listing.folders.push_back({platform::joinPath(path, name), shownLine(name)});
    }
    if (error) return {path, {}, reasonOf(error)};
    sortByName(listing.folders);
    return listing;
}

FolderListing listNearestFolder(const std::string& path, const std::string& fallback,
                                const std::stop_token& stop) {
    std::string candidate = path;
    while (!candidate.empty()) {
        FolderListing listing = listFolders(candidate, stop);
        if (listing.error.isEmpty()) return listing;
        if (candidate == "/") break;
        candidate = platform::parentPath(candidate);
    }
    return listFolders(fallback, stop);
}

std::string typedFolder(std::string_view text, const std::string& shown, const std::string& home) {
    if (text == "~" || text.starts_with("~/"))
        return platform::standardizedPath(home + std::string(text.substr(1)));
    if (text.starts_with('/')) return platform::standardizedPath(text);
    return platform::standardizedPath(platform::joinPath(shown, text));
}

FolderListing makeFolder(const std::string& parent, const std::string& name) {
    const auto failed = [&](const QString& reason) { return FolderListing{parent, {}, reason}; };
    if (!isOneComponent(name)) return failed(QStringLiteral("名称不能为空，也不能含有「/」。"));
    const std::string path = platform::joinPath(parent, name);
    std::error_code error;
    if (fs::create_directory(path, error)) return listFolders(path);
    if (!error || error == std::errc::file_exists)
        return failed(QStringLiteral("这里已经有同名的文件夹或文件。"));
    if (error == std::errc::permission_denied || error == std::errc::operation_not_permitted)
        return failed(QStringLiteral("没有权限在这里新建文件夹。"));
    return failed(reasonOf(error));
}

QString obstacleToWriting(const std::string& path) {
    std::error_code error;
    if (!fs::is_directory(path, error)) {
        return reasonOf(error ? error : std::make_error_code(std::errc::not_a_directory));
    }
    if (::access(path.c_str(), W_OK | X_OK) == 0) return {};
    const std::error_code refused(errno, std::generic_category());
    return refused == std::errc::permission_denied ? QStringLiteral("没有权限写入这个文件夹，请换一个位置。")
                                                   : reasonOf(refused);
}

} // namespace corvane::screens
