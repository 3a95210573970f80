#include "platform/files/layers/file_layer.h"

#include <cerrno>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "platform/files/directory.h"
#include "platform/files/file_descriptor.h"
#include "platform/files/layers/folder_file_layer.h"
#include "platform/files/writing/durable_file.h"
#include "platform/files/writing/temporary_file.h"
#include "support/temporary_home.h"

namespace corvane::platform {
namespace {

using testing::TemporaryHome;

TEST(FileLayer, RefusesNamesThatASystemCallWouldCutShort) {
    const TemporaryHome home;
    FileLayer& files = posixFileLayer();
    const std::string victim = home.write("victim", "precious");
    const std::string name = victim + std::string("\0.eml", 5);
    struct stat status{};
    EXPECT_EQ(files.open(name, O_WRONLY | O_TRUNC, 0), -1);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(files.unlink(name), -1);
    EXPECT_EQ(files.stat(name, status), -1);
    EXPECT_EQ(files.rename(name, home.at("other")), -1);
    EXPECT_EQ(files.rename(home.write("other", ""), name), -1);
    EXPECT_EQ(files.makeDirectory(home.at("folder") + std::string("\0x", 2), 0755), -1);
    EXPECT_EQ(readFile(victim), "precious");
}

TEST(FileLayer, StaysInAFolderThatWasOpenedWhateverItsPathMeansNow) {
    const TemporaryHome home;
    FileLayer& files = posixFileLayer();
    home.write("root/inside", "1");
    const FileDescriptor root(files.open(home.at("root"), O_RDONLY | O_DIRECTORY, 0));
    std::filesystem::rename(home.at("root"), home.at("moved"));
    home.write("root/inside", "other");
    ASSERT_EQ(::symlink("inside", home.at("moved/link").c_str()), 0);

    FolderFileLayer folder(files, root.get());
    struct stat status{};
    EXPECT_EQ(folder.stat("inside", status), 0);
    EXPECT_EQ(status.st_size, 1);
    EXPECT_EQ(folder.stat("link", status), 0);
    EXPECT_TRUE(S_ISLNK(status.st_mode));
    EXPECT_EQ(folder.makeDirectory("new", 0755), 0);
    EXPECT_EQ(folder.rename("inside", "renamed"), 0);
    EXPECT_EQ(folder.unlink("link"), 0);
    EXPECT_FALSE(writeFileAtomically(folder, "index", "x"));
    std::vector<std::string> names;
    EXPECT_EQ(files.list(root.get(), [&](std::string_view name, unsigned char) { names.emplace_back(name); }),
              0);
    EXPECT_THAT(names, ::testing::UnorderedElementsAre("index", "new", "renamed"));
    EXPECT_EQ(listDirectory(home.at("root"), HiddenEntries::include)->size(), 1U);
    EXPECT_EQ(files.openAt(root.get(), std::string("renamed\0x", 9), O_RDONLY, 0), -1);
    EXPECT_EQ(errno, EINVAL);
}

TEST(FileLayer, OpensCloseOnExec) {
    const TemporaryHome home;
    const FileDescriptor file(posixFileLayer().open(home.at("f"), O_WRONLY | O_CREAT, 0644));
    EXPECT_NE(::fcntl(file.get(), F_GETFD) & FD_CLOEXEC, 0);
}

TEST(TemporaryFile, IsPrivateAndGoesWithItsLastOwner) {
    const TemporaryHome home;
    std::string path;
    {
        TemporaryFile first(home.path(), "corvane-lines-", ".txt");
        path = first.path();
        EXPECT_THAT(path.substr(home.path().size()),
                    ::testing::MatchesRegex("/corvane-lines-[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB]"
                                            "[0-9A-F]{3}-[0-9A-F]{12}\\.txt"));
        struct stat status{};
        ASSERT_EQ(::stat(path.c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 0777, 0600U);
        TemporaryFile second(home.path(), "corvane-lines-", ".txt");
        const std::string replaced = second.path();
        second = std::move(first);
        EXPECT_FALSE(fileExists(replaced));
        EXPECT_EQ(::write(second.descriptor(), "x", 1), 1);
        EXPECT_TRUE(fileExists(path));
    }
    EXPECT_FALSE(fileExists(path));
    EXPECT_THROW(TemporaryFile(home.at("nothing"), "a", "b"), std::system_error);
}

} // namespace
} // namespace corvane::platform
