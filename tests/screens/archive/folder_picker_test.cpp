#include "screens/archive/places/folder_picker.h"

#include <filesystem>
#include <set>

#include <sys/stat.h>
#include <unistd.h>

#include "screens/support/screens_fixture.h"
#include "support/unprivileged.h"

namespace corvane::testing {
namespace {

class FolderPickers : public ScreensTest {
  protected:
    void goTo(const std::string& path) {
        picker_.openTyped(QString::fromStdString(path));
        settle();
    }

    [[nodiscard]] QStringList names() const {
        QStringList names;
        for (int row = 0; row < picker_.rowCount(); ++row)
            names << picker_.data(picker_.index(row), FolderPicker::NameRole).toString();
        return names;
    }

    FolderPicker& picker_ = *archiveScreen_.place()->folderPicker();
};

TEST_F(FolderPickers, OnlyFoldersAreListed_InTheOrderThatPeopleExpect) {
    for (const char* folder : {"p/项目 10", "p/项目 9", "p/b", "p/A", "p/.hidden", "p/target"})
        home_.makeFolder(folder);
    home_.write("p/file.txt", "x");
    std::filesystem::create_directory_symlink(home_.at("p/target"), home_.at("p/link"));
    std::filesystem::create_symlink("/nowhere", home_.at("p/broken"));
    goTo(home_.at("p"));
    const QStringList shown = names();
    ASSERT_EQ(shown.size(), 6) << shown.join(u'|').toStdString();
    EXPECT_LT(shown.indexOf(QStringLiteral("项目 9")), shown.indexOf(QStringLiteral("项目 10")));
    EXPECT_LT(shown.indexOf(QStringLiteral("A")), shown.indexOf(QStringLiteral("b")));
    EXPECT_TRUE(shown.contains(QStringLiteral("link")));
    EXPECT_EQ(picker_.rowStartingWith(QStringLiteral("B"), 0), shown.indexOf(QStringLiteral("b")));
    EXPECT_EQ(picker_.rowStartingWith(QStringLiteral("none"), 0), -1);
}

// What is shown is a clean line; what is opened and chosen is the folder of that row and no other.
TEST_F(FolderPickers, NamesOfAnyBytesAreShownHarmlesslyAndChosenExactly) {
    const std::string odd[] = {"new\nline", "right\u202eto left", "👪 家庭", "bad \xff\xfe bytes",
                               " blank ",   std::string(255, 'x')};
    for (const std::string& name : odd) home_.makeFolder("odd/" + name);
    goTo(home_.at("odd"));
    ASSERT_EQ(picker_.rowCount(), 6);
    std::set<std::string> chosen;
    for (int row = 0; row < 6; ++row) {
        const QString name = names()[row];
        EXPECT_FALSE(name.contains(u'\n') || name.contains(QChar(0x202e))) << name.toStdString();
        picker_.choose(row);
        settle();
        chosen.insert(model_.archiving().destinations.transferDestination().value_or(""));
    }
    for (const std::string& name : odd) EXPECT_TRUE(chosen.contains(home_.at("odd/" + name))) << name;
    for (int row = 0; row < 6; ++row) {
        goTo(home_.at("odd"));
        picker_.openRow(row);
        settle();
        EXPECT_TRUE(picker_.errorText().isEmpty());
        EXPECT_EQ(picker_.rowCount(), 0) << "inside the folder of row " << row;
    }
}

TEST_F(FolderPickers, WhatCantBeOpenedIsSaidAndLeavesTheListAsItIs) {
    home_.makeFolder("here/inner");
    home_.write("file", "x");
    goTo(home_.at("here"));

    struct Case {
        std::string typed;
        const char* error;
    };

    for (const Case& example :
         {Case{home_.at("none/deeper"), "没有这个文件夹。"}, Case{home_.at("file"), "这不是文件夹。"},
          Case{"none", "没有这个文件夹。"}, Case{"/" + std::string(300, 'x'), "路径过长。"}}) {
        goTo(example.typed);
        EXPECT_EQ(picker_.errorText().toStdString(), example.error) << example.typed;
        EXPECT_EQ(picker_.pathText().toStdString(), home_.at("here"));
        EXPECT_EQ(names(), QStringList{QStringLiteral("inner")});
        EXPECT_FALSE(picker_.isBusy());
    }
    goTo("inner/../../here/./inner/");
    EXPECT_EQ(picker_.pathText().toStdString(), home_.at("here/inner")) << "relative to the shown folder";
    EXPECT_TRUE(picker_.errorText().isEmpty());
    goTo("~");
    EXPECT_EQ(picker_.pathText().toStdString(), home_.path());
}

TEST_F(FolderPickers, AFolderWithoutPermissionIsNeitherOpenedNorChosen) {
    home_.makeFolder("open/locked");
    home_.makeFolder("open/readable");
    ::chmod(home_.path().c_str(), 0755);
    ::chmod(home_.at("open/locked").c_str(), 0);
    goTo(home_.at("open"));
    const auto before = model_.archiving().destinations.transferDestination();
    {
        const Unprivileged user;
        if (!user.isSo()) GTEST_SKIP() << "neither an ordinary user nor able to become one";
        picker_.openRow(0);
        waitUntilIdle(context_.tasks);
        EXPECT_EQ(picker_.errorText(), QStringLiteral("没有权限打开这个文件夹。"));
        EXPECT_EQ(picker_.rowCount(), 2);
        EXPECT_TRUE(writingObstacle(home_.at("open/locked")));
        goTo("/usr");
        picker_.makeFolder(QStringLiteral("corvane-test"));
        waitUntilIdle(context_.tasks);
        EXPECT_EQ(picker_.errorText(), QStringLiteral("没有权限在这里新建文件夹。"));
    }
    ::chmod(home_.at("open/locked").c_str(), 0755);
    EXPECT_EQ(model_.archiving().destinations.transferDestination(), before);
}

TEST_F(FolderPickers, ANewFolderIsOpened_AndABadNameIsRefused) {
    home_.makeFolder("base/taken");
    goTo(home_.at("base"));
    for (const char* name : {"", ".", "..", "a/b", "taken"}) {
        picker_.makeFolder(QString::fromUtf8(name));
        settle();
        EXPECT_FALSE(picker_.errorText().isEmpty()) << name;
        EXPECT_EQ(picker_.pathText().toStdString(), home_.at("base"));
    }
    QSignalSpy made(&picker_, &FolderPicker::folderMade);
    picker_.makeFolder(QStringLiteral("邮件归档"));
    settle();
    EXPECT_EQ(made.count(), 1);
    EXPECT_EQ(picker_.pathText().toStdString(), home_.at("base/邮件归档"));
    EXPECT_TRUE(std::filesystem::is_directory(home_.at("base/邮件归档")));
    picker_.goUp();
    settle();
    EXPECT_EQ(names().size(), 2);
}

TEST_F(FolderPickers, BeginsWhereTheDestinationWas_AndAGoneFolderIsNotChosen) {
    home_.makeFolder("disk/archive");
    chooseDestination(home_.at("disk/archive"));
    std::filesystem::remove_all(home_.at("disk/archive"));
    picker_.begin();
    settle();
    EXPECT_EQ(picker_.pathText().toStdString(), home_.at("disk"));
    ASSERT_GE(picker_.places().size(), 2);
    EXPECT_EQ(picker_.places().front().toMap()[QStringLiteral("name")].toString(),
              QStringLiteral("个人文件夹"));

    QSignalSpy chosen(&picker_, &FolderPicker::chosen);
    std::filesystem::remove_all(home_.at("disk"));
    picker_.choose(-1);
    settle();
    EXPECT_EQ(chosen.count(), 0);
    EXPECT_EQ(picker_.errorText(), QStringLiteral("没有这个文件夹。"));
}

} // namespace
} // namespace corvane::testing
