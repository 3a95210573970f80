// A disk that goes during a run. Only where a test can mount one: Linux.
#include <cstddef>
#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mount.h>

#include "archive/archive_fixture.h"

namespace corvane::testing {
namespace {

using Unmounting = ArchiveFixture;

TEST_F(Unmounting, NothingGoesBelowADiskThatIsUnmountedInARun) {
    constexpr std::size_t last = 4;
    std::filesystem::create_directory(root);
    if (::mount("none", root.c_str(), "tmpfs", 0, "size=1m") != 0) GTEST_SKIP() << "mounting isn't permitted";
    FaultyFileLayer files;
    files.observe([&, done = false](const RecordedOperation& operation) mutable {
        if (done || operation.operation != FileOperation::write) return;
        if (files.operationCount(FileOperation::write) + 1 < last) return;
        done = true;
        ::umount2(root.c_str(), MNT_DETACH);
    });
    MessageList messages;
    for (const char* id : {"1", "2", "3", "4", "5", "6", "7", "8"}) messages.push_back(store(id));
    EXPECT_THAT(errorOf([&] { archive(messages, files); }), ::testing::EndsWith("：位置不存在或磁盘未连接"));
    EXPECT_EQ(files.operationCount(FileOperation::write), last);
    EXPECT_EQ(treeOf(root), Tree{});
}

} // namespace
} // namespace corvane::testing
