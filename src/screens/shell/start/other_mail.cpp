#include "screens/shell/start/other_mail.h"

#include <filesystem>
#include <functional>
#include <stop_token>
#include <string_view>
#include <system_error>

#include "model/mail/store/mail_folder.h"
#include "platform/files/directory.h"
#include "platform/files/writing/private_files.h"
#include "platform/paths.h"
#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view mailBelowHome = "Library/Mail";
constexpr qsizetype pathLimit = 5000;

FolderChoice opening(const FolderQuestion& question, const std::string& home, const std::string& mail) {
    FolderChoice choice;
    choice.canUse = true;
    choice.note = QStringLiteral("打开这里的 Mail");
    choice.noteLine =
        screens::shownPath(screens::shownLine(mail, pathLimit), screens::wholeText(question.home));
    choice.path = home;
    return choice;
}

struct OpenJob {
    std::string mail;
    std::string homes; // the folder of such homes
};

// The home that leads to a folder of Mail, the same one each time; empty where it can't be made.
std::string homeLeadingTo(const OpenJob& job) {
    const std::string home =
        platform::joinPath(job.homes, std::to_string(std::hash<std::string>()(job.mail)));
    const fs::path link = platform::joinPath(home, mailBelowHome);
    std::error_code error;
    fs::create_directories(link.parent_path(), error);
    if (error) return {};
    platform::narrowToOwner(job.homes);
    if (fs::read_symlink(link, error) == fs::path(job.mail)) return home;
    fs::remove(link, error);
    fs::create_directory_symlink(job.mail, link, error);
    return error ? std::string() : home;
}

} // namespace

FolderChoice mailChoice(const FolderQuestion& question, const std::stop_token&) {
    const std::string& path = question.path;
    const std::string below = platform::joinPath(path, mailBelowHome);
    if (platform::isDirectory(below)) return opening(question, path, below);
    if (path.ends_with("/" + std::string(mailBelowHome)) && holdsMailStore(path))
        return opening(question, std::string(platform::parentPath(platform::parentPath(path))), path);
    if (holdsMailStore(path)) {
        FolderChoice choice = opening(question, path, path);
        choice.makes = true;
        return choice;
    }
    FolderChoice none;
    none.note = QStringLiteral("这里没有 Mail 数据");
    none.noteLine = QStringLiteral("选一个个人文件夹，或一个 Mail 文件夹");
    return none;
}

OtherMail::OtherMail(CorvaneViewModel& model, QObject* parent)
  : QObject(parent)
  , model_(model)
  , picker_(model, &mailChoice)
  , task_(model.context().tasks) {
    connect(&picker_, &FolderPicker::chosen, this, &OtherMail::open);
}

void OtherMail::open() {
    errorText_.clear();
    Q_EMIT changed();
    const std::string path = picker_.chosenPath();
    if (!picker_.choice().makes) {
        Q_EMIT ready(screens::wholeText(path));
        return;
    }
    task_.start(
        TaskPriority::userInitiated, OpenJob{path, model_.context().support.filePath("mail-homes")},
        [](const OpenJob& job, const TaskHandle&) { return homeLeadingTo(job); },
        [this](const std::string& home) {
            if (!home.empty()) {
                Q_EMIT ready(screens::wholeText(home));
                return;
            }
            errorText_ = QStringLiteral("没能打开这个 Mail 文件夹：应用数据文件夹不能写入。");
            Q_EMIT changed();
        });
}

} // namespace corvane
