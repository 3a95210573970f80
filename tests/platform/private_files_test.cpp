#include "platform/files/writing/private_files.h"

#include <filesystem>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/files/file_package.h"
#include "platform/files/writing/durable_file.h"
#include "platform/settings_store.h"
#include "support/temporary_home.h"

namespace corvane::platform {
namespace {

using testing::TemporaryHome;

mode_t modeOf(const std::string& path) {
    struct stat status{};
    return ::lstat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}

// What others could do to a file is the same for every mask that a process may have.
class PrivateFiles : public ::testing::TestWithParam<mode_t> {
  protected:
    PrivateFiles()
      : earlier_(::umask(GetParam())) {}

    ~PrivateFiles() override { ::umask(earlier_); }

    const TemporaryHome home_;

  private:
    mode_t earlier_;
};

INSTANTIATE_TEST_SUITE_P(Masks, PrivateFiles, ::testing::Values(0, 022));

TEST_P(PrivateFiles, AreMadeForTheirOwner) {
    FileLayer& files = posixFileLayer();
    ASSERT_FALSE(createDirectories(files, home_.at("a/b")));
    ASSERT_FALSE(writeFileAtomically(files, home_.at("a/whole"), "x"));
    ASSERT_FALSE(writeFileAtomically(files, home_.at("a/pieces"), [](const ByteSink& sink) { sink("x"); }));
    ASSERT_FALSE(writeNewFile(files, home_.at("a/new"), "x"));
    makePrivateFile(home_.at("a/database"));
    SettingsStore(home_.at("c/settings")).setText("key", "value");
    for (const char* folder : {"a", "a/b", "c"}) EXPECT_EQ(modeOf(home_.at(folder)), 0700U) << folder;
    for (const char* file : {"a/whole", "a/pieces", "a/new", "a/database", "c/settings"})
        EXPECT_EQ(modeOf(home_.at(file)), 0600U) << file;
}

TEST_P(PrivateFiles, AReplacementPermitsWhatTheOldOneAndTheCallerDo) {
    const struct {
        mode_t old;
        mode_t most;
        mode_t result;
    } cases[] = {{0644, 0600, 0600}, {0666, 0640, 0640}, {0600, 0660, 0600}, {0400, 0600, 0400}};

    for (const auto& [old, most, result] : cases) {
        const std::string path = home_.write("file", "old");
        ::chmod(path.c_str(), old);
        ASSERT_FALSE(writeFileAtomically(posixFileLayer(), path, "new", most));
        EXPECT_EQ(modeOf(path), result);
    }
}

TEST_P(PrivateFiles, WhatAnEarlierVersionLeftOpenIsNarrowed) {
    const std::string elsewhere = home_.write("elsewhere", "x");
    const std::string folder = home_.makeFolder("Corvane");
    const std::string file = home_.write("Corvane/cache/index.json", "x");
    std::filesystem::create_symlink(elsewhere, home_.at("Corvane/link"));
    for (const std::string& open : {folder, home_.at("Corvane/cache")}) ::chmod(open.c_str(), 0755);
    for (const std::string& open : {file, elsewhere}) ::chmod(open.c_str(), 0644);
    ASSERT_FALSE(makePrivateFolder(posixFileLayer(), folder));
    EXPECT_EQ(modeOf(folder), 0700U);
    EXPECT_EQ(modeOf(home_.at("Corvane/cache")), 0700U);
    EXPECT_EQ(modeOf(file), 0600U);
    EXPECT_EQ(modeOf(elsewhere), 0644U);
    const std::string settings = home_.write("settings", "{}");
    ::chmod(settings.c_str(), 0644);
    const SettingsStore store(settings);
    EXPECT_EQ(modeOf(settings), 0600U);
}

TEST_P(PrivateFiles, AnOwnFolderIsNoLinkAndBelongsToThisUser) {
    EXPECT_TRUE(makeOwnFolder(home_.at("own")));
    EXPECT_EQ(modeOf(home_.at("own")), 0700U);
    ::chmod(home_.at("own").c_str(), 0777);
    EXPECT_TRUE(makeOwnFolder(home_.at("own")));
    EXPECT_EQ(modeOf(home_.at("own")), 0700U);
    std::filesystem::create_symlink(home_.at("own"), home_.at("link"));
    EXPECT_FALSE(makeOwnFolder(home_.at("link")));
    EXPECT_FALSE(makeOwnFolder(home_.write("file", "")));
    EXPECT_FALSE(makeOwnFolder(home_.at("missing/own")));
    if (::geteuid() != 0) return;
    ASSERT_EQ(::chown(home_.at("own").c_str(), 65534, 65534), 0);
    EXPECT_FALSE(makeOwnFolder(home_.at("own")));
}

TEST(FilePackages, AreWhateverMayDoMoreThanShowItsContent) {
    const TemporaryHome home;
    for (const char* plain : {"归档", ".hidden", "a b"})
        EXPECT_TRUE(isPlainFolder(home.makeFolder(plain))) << plain;
    for (const char* package : {"Evil.app", "a.PKG", "x.bundle", "Evil.app ", ".x.prefPane"})
        EXPECT_FALSE(isPlainFolder(home.makeFolder(package))) << package;
    home.makeFolder("NoExtension/Contents/MacOS");
    home.write("AppDir/AppRun", "");
    for (const char* package : {"NoExtension", "AppDir", "missing"})
        EXPECT_FALSE(isPlainFolder(home.at(package)));
    EXPECT_FALSE(isPlainFolder(home.write("file", "")));
}

} // namespace
} // namespace corvane::platform
