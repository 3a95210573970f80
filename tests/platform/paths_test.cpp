#include "platform/paths.h"

#include <filesystem>

#include <gtest/gtest.h>

namespace corvane::platform {
namespace {

using namespace std::string_literals;

TEST(Paths, Join_PutsExactlyOneSlashBetween) {
    struct {
        std::string_view base, part, expected;
    } const cases[] = {
        {"/a", "b", "/a/b"},   {"/a/", "b", "/a/b"}, {"/a//", "//b", "/a/b"}, {"/", "b", "/b"},
        {"a", "b/c", "a/b/c"}, {"", "b", "b"},       {"/a", "", "/a/"},
    };

    for (const auto& [base, part, expected] : cases) EXPECT_EQ(joinPath(base, part), expected);
}

TEST(Paths, AreTakenApartAtBorders) {
    struct {
        std::string_view path, last, parent, extension, stem;
    } const cases[] = {
        {"/a/b.emlx", "b.emlx", "/a", "emlx", "/a/b"},
        {"/a/12.partial.emlx", "12.partial.emlx", "/a", "emlx", "/a/12.partial"},
        {"/a.mbox/Data/", "Data", "/a.mbox", "", "/a.mbox/Data/"},
        {"/a/b.mbox/", "b.mbox", "/a", "mbox", "/a/b"},
        {"/a//b", "b", "/a", "", "/a//b"},
        {"/a", "a", "/", "", "/a"},
        {"a.b", "a.b", "", "b", "a"},
        {"/", "/", "/", "", "/"},
        {"//", "/", "/", "", "//"},
        {"", "", "", "", ""},
        {"/a/.hidden", ".hidden", "/a", "", "/a/.hidden"},
        {"/a/.b.c", ".b.c", "/a", "c", "/a/.b"},
        {"/a/b.", "b.", "/a", "", "/a/b."},
    };

    for (const auto& [path, last, parent, extension, stem] : cases) {
        SCOPED_TRACE(path);
        EXPECT_EQ(lastPathComponent(path), last);
        EXPECT_EQ(parentPath(path), parent);
        EXPECT_EQ(pathExtension(path), extension);
        EXPECT_EQ(withoutExtension(path), stem);
    }
}

TEST(Paths, Standardize_ResolvesTextOnly) {
    struct {
        std::string_view path, expected;
    } const cases[] = {
        {"/a/./b//c/", "/a/b/c"},
        {"/a/b/../c", "/a/c"},
        {"/../..", "/"},
        {"/", "/"},
        {"///", "/"},
        {"/a/..", "/"},
        {"/a/.../b", "/a/.../b"},
        {"/a/..b/b..", "/a/..b/b.."},
    };

    for (const auto& [path, expected] : cases) EXPECT_EQ(standardizedPath(path), expected);

    const std::string current = std::filesystem::current_path();
    EXPECT_EQ(standardizedPath(""), current);
    EXPECT_EQ(standardizedPath("x/../y"), joinPath(current, "y"));
    EXPECT_EQ(standardizedPath(".."), parentPath(current));
}

TEST(Paths, Standardize_TakesMegabytesOfDotsInLinearTime) {
    std::string path;
    for (int i = 0; i < 500'000; ++i) path += "/a";
    for (int i = 0; i < 500'000; ++i) path += "/..";
    EXPECT_EQ(standardizedPath(path), "/");
}

TEST(Paths, SafeRelativePath_NeverLeavesItsRoot) {
    for (const auto& safe : {"a"s, "2024/me/x.eml"s, "a/../b"s, "./a"s, "a//b"s, "..a/b.."s, "a/"s}) {
        EXPECT_TRUE(isSafeRelativePath(safe)) << safe;
    }
    for (const auto& unsafe : {""s, "."s, "./"s, "/a"s, "//a"s, ".."s, "../a"s, "a/../.."s, "a/../../b/c"s,
                               "./../a"s, "a//../../b"s, "a/.."s, "a\0b"s}) {
        EXPECT_FALSE(isSafeRelativePath(unsafe)) << unsafe;
    }
}

} // namespace
} // namespace corvane::platform
