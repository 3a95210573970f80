#include "platform/settings_store.h"

#include <chrono>
#include <filesystem>
#include <thread>

#include <gtest/gtest.h>
#include <unistd.h>

#include "platform/files/directory.h"
#include "support/faulty_file_layer.h"
#include "support/temporary_home.h"

namespace corvane::platform {
namespace {

using namespace std::string_literals;
using testing::Effect;
using testing::FaultyFileLayer;
using testing::FileOperation;
using testing::TemporaryHome;

using TextList = std::vector<std::string>;
using TextMap = std::map<std::string, std::string>;

TEST(SettingsStore, ComeBackInTheNextRun) {
    const TemporaryHome home;
    const std::string path = home.at(".config/Corvane.conf");
    const TextMap rules{{"email:a@b", "工作"}, {"", ""}, {"inferred:\"\\", "\u0001\n"}};
    const TextList roots{"/Volumes/备份/邮件", "", "a\0b"s};
    SettingsStore first(path);
    EXPECT_FALSE(first.text("destination"));
    first.setText("destination", "/x/\"y\"");
    first.setTextList("roots", roots);
    first.setTextMap("rules", rules);
    first.setTextList("none", {});
    first.setText("gone", "x");
    first.remove("gone");

    const SettingsStore second(path);
    EXPECT_EQ(second.text("destination"), "/x/\"y\"");
    EXPECT_EQ(second.textList("roots"), roots);
    EXPECT_EQ(second.textMap("rules"), rules);
    EXPECT_EQ(second.textList("none"), TextList{});
    EXPECT_FALSE(second.text("gone"));
}

TEST(SettingsStore, AreReadableAndSortedInTheFile) {
    const TemporaryHome home;
    SettingsStore settings(home.at("s.conf"));
    settings.setTextList("b", {"/备份/x"});
    settings.setText("a", "1");
    EXPECT_EQ(testing::readWhole(home.at("s.conf")),
              "{\n    \"a\": \"1\",\n    \"b\": [\n        \"/备份/x\"\n    ]\n}\n");
}

TEST(SettingsStore, KeepWhatThisVersionDoesNotKnow) {
    const TemporaryHome home;
    const std::string path = home.write(
        "s.conf", R"({"z": {"deep": [1, null, 2.5e-3, {"x": true}]}, "destination": 12, "roots": ["a", 3],)"
                  R"( "rules": {"a": []}, "twice": "1", "twice": "2", "big": 18446744073709551615})");
    SettingsStore settings(path);
    EXPECT_FALSE(settings.text("destination"));
    EXPECT_FALSE(settings.textList("roots"));
    EXPECT_FALSE(settings.textMap("rules"));
    EXPECT_FALSE(settings.textList("z"));
    settings.setText("new", "1");
    settings.remove("twice");
    const std::string saved = testing::readWhole(path);
    for (const char* part :
         {"\"deep\"", "0.0025", "null", "true", "\"destination\": 12", "18446744073709551615"}) {
        EXPECT_NE(saved.find(part), std::string::npos) << part;
    }
    EXPECT_EQ(saved.find("twice"), std::string::npos);
}

TEST(SettingsStore, ADamagedFileCountsAsEmptyAndIsKeptAside) {
    const std::string damages[] = {"",
                                   "{\"a\": \"1\"",
                                   "[1]",
                                   "\"text\"",
                                   "{\"a\": \"\xFF\"}",
                                   "{\"a\": " + std::string(200'000, '['),
                                   "{\"a\": " + std::string(100'000, '[') + std::string(100'000, ']') + "}",
                                   "\0\0\0"s};
    for (const auto& damage : damages) {
        const TemporaryHome home;
        const std::string path = home.write("s.conf", damage);
        SettingsStore settings(path);
        EXPECT_FALSE(settings.text("a"));
        EXPECT_EQ(settings.setAside(), path + ".damaged");
        EXPECT_EQ(testing::readWhole(path), damage) << "looking must not write";
        settings.setText("b", "2");
        EXPECT_EQ(testing::readWhole(path + ".damaged"), damage);
        const SettingsStore next(path);
        EXPECT_EQ(next.text("b"), "2");
        EXPECT_FALSE(next.setAside());
    }
}

TEST(SettingsStore, AFileThatCannotBeReadIsNoDamagedOne) {
    for (const auto operation : {FileOperation::open, FileOperation::read}) {
        const TemporaryHome home;
        const std::string path = home.at("s.conf");
        SettingsStore(path).setText("a", "old");
        const std::string before = testing::readWhole(path);
        FaultyFileLayer files;
        files.inject({.at = 1, .effect = Effect::fail, .operation = operation, .error = EIO});
        SettingsStore settings(path, files);
        EXPECT_TRUE(settings.isUnreadable());
        EXPECT_FALSE(settings.setAside());
        files.inject({.at = 1, .effect = Effect::fail, .operation = operation, .error = EACCES});
        settings.setText("b", "1");
        EXPECT_EQ(testing::readWhole(path), before);
        EXPECT_FALSE(fileExists(path + ".damaged"));
        settings.setText("b", "2");
        EXPECT_FALSE(settings.isUnreadable());
        EXPECT_EQ(SettingsStore(path).text("a"), "old") << "what the file held stays";
        EXPECT_EQ(SettingsStore(path).text("b"), "2");
    }
}

TEST(SettingsStore, AFailedSaveLosesNeitherTheFileNorTheNewValue) {
    const TemporaryHome home;
    const std::string path = home.at("folder/s.conf");
    SettingsStore(path).setText("a", "old");
    const std::string before = testing::readWhole(path);
    FaultyFileLayer files;
    SettingsStore settings(path, files);
    for (const auto operation : {FileOperation::open, FileOperation::write, FileOperation::sync,
                                 FileOperation::close, FileOperation::rename}) {
        files.inject({.at = 1, .effect = Effect::fail, .operation = operation, .error = ENOSPC});
        settings.setText("a", "new");
        EXPECT_EQ(testing::readWhole(path), before);
        EXPECT_EQ(settings.text("a"), "new");
        EXPECT_EQ(listDirectory(home.at("folder"), HiddenEntries::include)->size(), 1U);
    }
    settings.setText("b", "1");
    EXPECT_EQ(SettingsStore(path).text("a"), "new");
}

TEST(SettingsStore, TwoProcessesDoNotUndoEachOther) {
    const TemporaryHome home;
    const std::string path = home.at("s.conf");
    SettingsStore window(path);
    window.setTextList("selected", {"x"});
    SettingsStore scheduled(path);
    scheduled.setTextList("roots", {"/archive"});
    window.setTextList("selected", {"y"});
    EXPECT_EQ(SettingsStore(path).textList("roots"), TextList{"/archive"});
    EXPECT_EQ(window.textList("roots"), TextList{"/archive"});
}

TEST(SettingsStore, StoresThatWriteAtOneTimeKeepAllOfIt) {
    constexpr int changes = 40;
    constexpr std::chrono::milliseconds pause(3); // a store that never pauses would keep the others out
    const TemporaryHome home;
    const std::string path = home.at("config/s.conf");
    {
        std::vector<std::jthread> programs;
        for (const std::string name : {"window", "cli", "schedule"}) {
            programs.emplace_back([&, name] {
                SettingsStore settings(path);
                for (int i = 0; i < changes; ++i) {
                    settings.setText(name + std::to_string(i), "x");
                    std::this_thread::sleep_for(pause);
                }
            });
        }
    }
    const SettingsStore settings(path);
    for (const std::string name : {"window", "cli", "schedule"})
        for (int i = 0; i < changes; ++i) EXPECT_TRUE(settings.text(name + std::to_string(i))) << name << i;
}

TEST(SettingsStore, AFileThatVanishesOrBreaksMeanwhileEmptiesNothing) {
    const TemporaryHome home;
    const std::string path = home.at("s.conf");
    SettingsStore settings(path);
    settings.setTextList("roots", {"/archive"});
    std::filesystem::remove(path);
    settings.setText("a", "1");
    EXPECT_EQ(SettingsStore(path).textList("roots"), TextList{"/archive"});
    home.write("s.conf", "broken");
    settings.setText("a", "2");
    EXPECT_EQ(SettingsStore(path).textList("roots"), TextList{"/archive"});
    EXPECT_EQ(testing::readWhole(path + ".damaged"), "broken");
}

TEST(SettingsStore, RepairTextThatIsNoUtf8) {
    const TemporaryHome home;
    SettingsStore settings(home.at("s.conf"));
    settings.setTextList("roots", {"/a\xFF/b"});
    settings.setText("other", "x");
    EXPECT_EQ(SettingsStore(home.at("s.conf")).textList("roots"), TextList{"/a\uFFFD/b"});
}

TEST(SettingsStore, StayWhereALinkPutsThem) {
    const TemporaryHome home;
    home.write("dotfiles/corvane", "{}");
    ASSERT_EQ(::symlink("dotfiles/corvane", home.at("s.conf").c_str()), 0);
    SettingsStore(home.at("s.conf")).setText("a", "1");
    EXPECT_TRUE(std::filesystem::is_symlink(home.at("s.conf")));
    EXPECT_EQ(SettingsStore(home.at("dotfiles/corvane")).text("a"), "1");
}

} // namespace
} // namespace corvane::platform
