#include "platform/files/directory.h"

#include <algorithm>
#include <filesystem>
#include <utility>

#include <dirent.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/temporary_home.h"

namespace corvane::platform {
namespace {

using namespace std::string_literals;
using testing::TemporaryHome;

void link(const std::string& target, const std::string& at) {
    ASSERT_EQ(::symlink(target.c_str(), at.c_str()), 0);
}

TEST(Directory, List_SortsByBytesAndFollowsLinksForTheKind) {
    const TemporaryHome home;
    home.write("d/b.emlx", "x");
    home.write("d/\xE9\x82\xAE", "x");
    home.write("d/.hidden", "x");
    home.makeFolder("d/Z");
    link(home.at("d/Z"), home.at("d/toFolder"));
    link("b.emlx", home.at("d/toFile"));
    link("nowhere", home.at("d/dangling"));
    ASSERT_EQ(::mkfifo(home.at("d/pipe").c_str(), 0600), 0);

    const auto entries = listDirectory(home.at("d"), HiddenEntries::skip);
    ASSERT_TRUE(entries);
    std::vector<std::pair<std::string, EntryKind>> seen;
    for (const auto& entry : *entries) seen.emplace_back(entry.name, entry.kind);
    const std::vector<std::pair<std::string, EntryKind>> expected{{"Z", EntryKind::directory},
                                                                  {"b.emlx", EntryKind::regularFile},
                                                                  {"dangling", EntryKind::other},
                                                                  {"pipe", EntryKind::other},
                                                                  {"toFile", EntryKind::regularFile},
                                                                  {"toFolder", EntryKind::directory},
                                                                  {"\xE9\x82\xAE", EntryKind::regularFile}};
    EXPECT_EQ(seen, expected);
    EXPECT_EQ(listDirectory(home.at("d"), HiddenEntries::include)->front().name, ".hidden");
}

TEST(Directory, Visit_SeesEveryEntryOfALargeFolderOnce) {
    const TemporaryHome home;
    for (int i = 0; i < 3000; ++i) home.write("d/" + std::to_string(i) + ".emlx", "");
    std::vector<std::string> names;
    EXPECT_TRUE(visitDirectory(home.at("d"), [&](std::string_view name, unsigned char type) {
        EXPECT_TRUE(type == DT_REG || type == DT_UNKNOWN);
        names.emplace_back(name);
    }));
    std::ranges::sort(names);
    EXPECT_EQ(names.size(), 3000U);
    EXPECT_EQ(std::ranges::adjacent_find(names), names.end());
}

TEST(Directory, FailuresAreToldFromEmptyResults) {
    const TemporaryHome home;
    home.write("file", "x");
    home.makeFolder("empty");
    std::string error;
    EXPECT_EQ(listDirectory(home.at("empty"), HiddenEntries::skip)->size(), 0U);
    EXPECT_FALSE(listDirectory(home.at("nothing"), HiddenEntries::skip, &error));
    EXPECT_EQ(error, "No such file or directory");
    EXPECT_FALSE(listDirectory(home.at("file"), HiddenEntries::skip, &error));
    EXPECT_EQ(error, "Not a directory");
    EXPECT_FALSE(visitDirectory(home.at("nothing"), [](auto, auto) {}));
}

TEST(Directory, ReadFile_TakesOnlyRegularFilesWithinTheLimit) {
    const TemporaryHome home;
    std::string content = "a\0b"s;
    content.append(300'000, 'x');
    home.write("file", content);
    home.write("empty", "");
    ASSERT_EQ(::mkfifo(home.at("x.emlx").c_str(), 0600), 0);
    link("file", home.at("link"));
    const auto size = static_cast<std::int64_t>(content.size());

    EXPECT_EQ(readFile(home.at("file")), content);
    EXPECT_EQ(readFile(home.at("link")), content);
    EXPECT_EQ(readFile(home.at("empty")), "");
    EXPECT_EQ(readFile(home.at("empty"), 0), "");
    EXPECT_EQ(readFile(home.at("file"), size), content);
    EXPECT_EQ(readFilePrefix(home.at("file"), 3), "a\0b"s);
    for (std::size_t limit = 0; limit < 200; ++limit)
        EXPECT_EQ(readFilePrefix(home.at("file"), static_cast<std::int64_t>(limit)),
                  content.substr(0, limit));
    EXPECT_EQ(readFilePrefix(home.at("file"), size + 10), content);

    struct {
        std::string path;
        std::int64_t limit;
        std::string error;
    } const refused[] = {
        {home.at("file"), size - 1, "File too large"},
        {home.at("x.emlx"), INT64_MAX, "Invalid argument"},
        {home.path(), INT64_MAX, "Is a directory"},
        {home.at("nothing"), INT64_MAX, "No such file or directory"},
        {home.at("file") + "\0.emlx"s, INT64_MAX, "Invalid argument"},
    };

    for (const auto& [path, limit, expected] : refused) {
        std::string error;
        EXPECT_FALSE(readFile(path, limit, &error));
        EXPECT_EQ(error, expected) << path;
        EXPECT_EQ(readFilePrefix(path, 10).has_value(), path == home.at("file")) << path;
    }
}

TEST(Directory, Questions_AnswerByTheTargetAndNeverHang) {
    const TemporaryHome home;
    home.write("file", "x");
    home.write("empty", "");
    ASSERT_EQ(::mkfifo(home.at("pipe").c_str(), 0600), 0);
    link("file", home.at("link"));
    link("nowhere", home.at("dangling"));
    std::filesystem::permissions(home.at("link"), std::filesystem::perms::owner_exec,
                                 std::filesystem::perm_options::add);

    struct {
        std::string path;
        bool exists, directory, regular, executable, readable;
    } const cases[] = {
        {home.at("file"), true, false, true, true, true},
        {home.at("link"), true, false, true, true, true},
        {home.at("empty"), true, false, true, false, false},
        {home.path(), true, true, false, false, false},
        {home.at("pipe"), true, false, false, false, false},
        {home.at("dangling"), false, false, false, false, false},
        {home.path() + "\0x"s, false, false, false, false, false},
    };

    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.path);
        EXPECT_EQ(fileExists(expected.path), expected.exists);
        EXPECT_EQ(isDirectory(expected.path), expected.directory);
        EXPECT_EQ(isRegularFile(expected.path), expected.regular);
        EXPECT_EQ(isExecutableFile(expected.path), expected.executable);
        EXPECT_EQ(canReadAByte(expected.path), expected.readable);
        EXPECT_EQ(fileSize(expected.path).has_value(), expected.regular);
    }
}

} // namespace
} // namespace corvane::platform
