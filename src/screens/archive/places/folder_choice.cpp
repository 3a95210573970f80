#include "screens/archive/places/folder_choice.h"

#include "platform/paths.h"
#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

constexpr qsizetype pathLimit = 5000;

QString nameOf(const std::string& path) {
    return screens::shownLine(platform::lastPathComponent(path));
}

QString pathOf(const std::string& path, const std::string& home) {
    return screens::shownPath(screens::shownLine(path, pathLimit), screens::wholeText(home));
}

QString itemsText(std::int64_t items) {
    const QString count = screens::shownCount(items);
    return items < mostItemsCounted ? count + QStringLiteral(" 项") : QStringLiteral("超过 %1 项").arg(count);
}

// Taken as it is.
FolderChoice plainChoice(const FolderQuestion& question) {
    FolderChoice choice;
    choice.canUse = true;
    choice.note = QStringLiteral("归档将放进");
    choice.noteLine = pathOf(question.path, question.home);
    choice.useText = QStringLiteral("使用此位置");
    choice.path = question.path;
    return choice;
}

// A folder of its own is made in it.
FolderChoice makingChoice(const FolderQuestion& question, const FolderFacts& facts) {
    FolderChoice choice = plainChoice(question);
    choice.path = platform::joinPath(question.path, facts.freeName);
    choice.makes = true;
    choice.note = QStringLiteral("新建「%1」，用来放归档").arg(screens::wholeText(facts.freeName));
    choice.noteLine = pathOf(choice.path, question.home);
    if (question.isShown) choice.proposal = screens::wholeText(facts.freeName);
    return choice;
}

FolderChoice warned(FolderChoice choice, const FolderQuestion& question, const QString& title,
                    const QString& text) {
    const QString made = nameOf(choice.path);
    choice.note = question.isShown ? QStringLiteral("在这里新建「%1」").arg(made)
                                   : QStringLiteral("在「%1」里新建「%2」").arg(nameOf(question.path), made);
    choice.useText = QStringLiteral("新建并使用");
    choice.anywayText = QStringLiteral("仍用这里");
    choice.warningKind = QStringLiteral("attention");
    choice.warningTitle = title;
    choice.warningText = text;
    return choice;
}

FolderChoice archiveChoice(const FolderQuestion& question, const std::string& root) {
    FolderChoice choice = plainChoice(question);
    choice.path = root;
    choice.note = QStringLiteral("继续用「%1」").arg(nameOf(root));
    choice.noteLine = pathOf(root, question.home);
    choice.useText = QStringLiteral("用「%1」").arg(nameOf(root));
    if (root == question.path) return choice;
    choice.warningKind = QStringLiteral("danger");
    choice.warningTitle = QStringLiteral("「%1」已经是一个归档").arg(nameOf(root));
    choice.warningText = QStringLiteral("不能在归档里再放一个归档：备份、核对和删除会弄混。");
    return choice;
}

} // namespace

FolderChoice awaitedChoice(const FolderQuestion& question) {
    FolderChoice choice = plainChoice(question);
    choice.canUse = false;
    choice.note = QStringLiteral("正在查看这个文件夹…");
    return choice;
}

FolderChoice archiveFolderChoice(const FolderQuestion& question, const std::stop_token& stop) {
    return folderChoice(question, lookIntoFolder(question.path, proposedFolderName, stop));
}

FolderChoice folderChoice(const FolderQuestion& question, const FolderFacts& facts) {
    FolderChoice choice = plainChoice(question);
    // Choosing says why it can't be had.
    if (facts.error) return choice;
    if (!facts.archiveRoot.empty()) return archiveChoice(question, facts.archiveRoot);
    if (question.path == question.home)
        return warned(makingChoice(question, facts), question, QStringLiteral("这是你的个人文件夹"),
                      QStringLiteral("归档会和所有文件混在一起，以后很难整体移走。"));
    if (question.path == "/")
        return warned(makingChoice(question, facts), question, QStringLiteral("这是整个磁盘"),
                      QStringLiteral("归档会和系统的文件混在一起，以后很难整体移走。"));
    if (facts.items == 0) return choice;
    if (question.isShown) return makingChoice(question, facts);
    return warned(
        makingChoice(question, facts), question,
        QStringLiteral("「%1」里已有 %2别的文件").arg(nameOf(question.path), itemsText(facts.items)),
        QStringLiteral("归档文件会直接放在它们旁边。已有的文件不会被改动。"));
}

QString folderInsideText(const std::string& path, const FolderFacts& facts) {
    if (facts.error) return {};
    if (facts.archiveRoot == path) return QStringLiteral("归档");
    return facts.items == 0 ? QStringLiteral("空") : itemsText(facts.items);
}

} // namespace corvane
