#include "screens/archive/places/folder_texts.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <utility>

#include <QCollator>
#include <QLocale>

#include "records/texts/error_reasons.h"
#include "screens/texts/shown_text.h"

namespace corvane::screens {

namespace {

bool isRefused(const std::error_code& error) {
    return error == std::errc::permission_denied || error == std::errc::operation_not_permitted;
}

QString refusalText(FolderAction action) {
    switch (action) {
    case FolderAction::open:
        break;
    case FolderAction::make:
        return QStringLiteral("没有权限在这里新建文件夹。");
    case FolderAction::write:
        return QStringLiteral("没有权限写入这个文件夹，请换一个位置。");
    }
    return QStringLiteral("没有权限打开这个文件夹。");
}

} // namespace

std::vector<NamedFolder> sortedFolders(std::vector<std::string> names) {
    QCollator collator{QLocale(QLocale::Chinese, QLocale::China)};
    collator.setNumericMode(true);
    std::vector<NamedFolder> folders;
    std::vector<QCollatorSortKey> keys;
    folders.reserve(names.size());
    keys.reserve(names.size());
    for (std::string& name : names) {
        QString shown = shownLine(name);
        keys.push_back(collator.sortKey(shown));
        folders.push_back({std::move(name), std::move(shown)});
    }
    std::vector<std::size_t> order(folders.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(), [&](std::size_t left, std::size_t right) {
        const int compared = keys[left].compare(keys[right]);
        return compared != 0 ? compared < 0 : folders[left].name < folders[right].name;
    });
    std::vector<NamedFolder> sorted;
    sorted.reserve(folders.size());
    for (const std::size_t position : order) sorted.push_back(std::move(folders[position]));
    return sorted;
}

QString folderErrorText(const std::error_code& error, FolderAction action) {
    if (!error) return {};
    if (isRefused(error)) return refusalText(action);
    if (action == FolderAction::make && error == std::errc::invalid_argument)
        return QStringLiteral("名称不能为空，也不能含有「/」。");
    if (action == FolderAction::make && error == std::errc::file_exists)
        return QStringLiteral("这里已经有同名的文件夹或文件。");
    if (error == std::errc::no_such_file_or_directory) return QStringLiteral("没有这个文件夹。");
    if (error == std::errc::not_a_directory) return QStringLiteral("这不是文件夹。");
    return QStringLiteral("%1。").arg(shownLine(systemErrorReason(error.value())));
}

} // namespace corvane::screens
