#include "archive/destination/durable_write.h"

#include <algorithm>
#include <filesystem>
#include <utility>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "archive/archive_error.h"
#include "platform/files/directory.h"
#include "platform/files/layers/forwarding_file_layer.h"
#include "support/faulty_file_layer.h"
#include "support/temporary_home.h"

namespace corvane::archive {
namespace {

using testing::Effect;
using testing::FaultyFileLayer;
using testing::FileOperation;
using testing::TemporaryHome;

std::optional<ArchiveError::Case> writeError(platform::FileLayer& files, std::string_view bytes,
                                             const std::string& path) {
    try {
        writePOSIXBlocking(files, bytes, path);
        return std::nullopt;
    } catch (const ArchiveError& error) {
        return error.kind();
    }
}

class DurableWrite : public ::testing::Test {
  protected:
    const TemporaryHome home_;
    const std::string path_ = home_.at("x.eml");
};

TEST_F(DurableWrite, Write_HoldsExactlyTheBytesAfterAFlushAndReadsThemBack) {
    for (const std::size_t size :
         {std::size_t{0}, std::size_t{1}, std::size_t{1} << 20, (std::size_t{3} << 20) + 7}) {
        FaultyFileLayer files;
        files.inject({.at = 1, .effect = Effect::shorten, .operation = FileOperation::write});
        const std::string bytes(size, 'm');
        EXPECT_EQ(writeError(files, bytes, path_), std::nullopt);
        EXPECT_EQ(files.operationCount(FileOperation::sync), 1U);
        EXPECT_TRUE(verifyOnDisk(files, bytes, path_)) << size;
        std::filesystem::remove(path_);
    }
}

TEST_F(DurableWrite, Write_NeverTouchesWhatIsAtThePlaceAlready) {
    const std::string victim = home_.write("victim", "precious");
    home_.write("existing", "precious");
    home_.makeFolder("folder");
    ASSERT_EQ(::symlink(victim.c_str(), home_.at("link").c_str()), 0);
    ASSERT_EQ(::symlink(home_.at("nothing").c_str(), home_.at("dangling").c_str()), 0);
    ASSERT_EQ(::link(victim.c_str(), home_.at("hardlink").c_str()), 0);
    ASSERT_EQ(::mkfifo(home_.at("fifo").c_str(), 0644), 0);
    for (const char* name : {"existing", "folder", "link", "dangling", "hardlink", "fifo", "no/parent"}) {
        EXPECT_EQ(writeError(platform::posixFileLayer(), "evil", home_.at(name)),
                  ArchiveError::Case::writeFailed);
    }
    EXPECT_EQ(testing::readWhole(victim), "precious");
    EXPECT_EQ(testing::readWhole(home_.at("existing")), "precious");
    EXPECT_FALSE(platform::fileExists(home_.at("nothing")));
}

TEST_F(DurableWrite, Write_FailsWhenAnyOperationBeforeTheCloseFails) {
    for (const FileOperation operation : {FileOperation::open, FileOperation::write, FileOperation::sync}) {
        FaultyFileLayer files;
        files.inject({.at = 1, .effect = Effect::fail, .operation = operation, .error = ENOSPC});
        EXPECT_EQ(writeError(files, "bytes", path_), ArchiveError::Case::writeFailed);
        EXPECT_EQ(files.operationCount(FileOperation::open),
                  files.operationCount(FileOperation::close) + (operation == FileOperation::open ? 1 : 0));
        EXPECT_FALSE(platform::fileExists(path_)) << "what the failed write has made";
    }
}

// As a Mac's driver of FAT does: a file has the number of its first cluster, and an empty one a fixed number.
class NumberedByPlace final : public platform::ForwardingFileLayer {
  public:
    using ForwardingFileLayer::ForwardingFileLayer;

    int statOpen(int descriptor, struct stat& result) override {
        return numbered(ForwardingFileLayer::statOpen(descriptor, result), result);
    }

    int stat(const std::string& path, struct stat& result) override {
        return numbered(ForwardingFileLayer::stat(path, result), result);
    }

  private:
    static int numbered(int outcome, struct stat& result) {
        if (outcome == 0 && result.st_size == 0) result.st_ino = 999'999'999;
        return outcome;
    }
};

TEST_F(DurableWrite, Write_KnowsItsFileWhereTheFirstBytesGiveItANewNumber) {
    FaultyFileLayer faulty;
    NumberedByPlace files(faulty);
    removeFile(files, path_, writePOSIXBlocking(files, "bytes", path_));
    EXPECT_FALSE(platform::fileExists(path_));
    faulty.inject({.at = 1, .effect = Effect::fail, .operation = FileOperation::sync, .error = EIO});
    EXPECT_EQ(writeError(files, "bytes", path_), ArchiveError::Case::writeFailed);
    EXPECT_FALSE(platform::fileExists(path_)) << "what the failed write has made";
}

TEST_F(DurableWrite, ContentOnDisk_TellsWhatAnInterruptedWriteLeavesFromAnythingElse) {
    std::string bytes;
    bytes.resize(1'500'003, 'a');
    std::string changed = bytes;
    changed[1'400'000] = 'b';
    std::string holed = bytes;
    std::fill_n(holed.begin() + 1'000'000, 300'000, '\0');

    struct {
        const char* what;
        std::string content;
        DiskContent expected;
    } const cases[] = {
        {"equal", bytes, DiskContent::same},
        {"nothing yet", "", DiskContent::unfinished},
        {"cut", bytes.substr(0, 1'200'000), DiskContent::unfinished},
        {"blocks that never came", holed, DiskContent::unfinished},
        {"cut, with such blocks", holed.substr(0, 1'200'000), DiskContent::unfinished},
        {"one byte", changed, DiskContent::other},
        {"cut behind that byte", changed.substr(0, 1'450'000), DiskContent::other},
        {"longer", bytes + "x", DiskContent::other},
        {"longer by a zero", bytes + '\0', DiskContent::other},
    };

    FaultyFileLayer files;
    files.inject({.at = 2, .effect = Effect::shorten, .operation = FileOperation::read});
    for (const auto& [what, content, expected] : cases) {
        home_.write("x.eml", content);
        const DiskReading reading = contentOnDisk(files, bytes, path_, BeforeReading::flush, {});
        EXPECT_EQ(reading.content, expected) << what;
        const bool isSame = expected == DiskContent::same;
        EXPECT_EQ(reading.stamp.sizeBytes, isSame ? 1'500'003 : 0) << what;
        EXPECT_EQ(verifyOnDisk(files, bytes, path_), expected == DiskContent::same) << what;
    }
    EXPECT_EQ(contentOnDisk(files, bytes, home_.at("none"), BeforeReading::flush, {}).content,
              DiskContent::unreadable);
}

TEST_F(DurableWrite, Verify_DoesntTrustWhatCannotBeReadOrIsALink) {
    home_.write("x.eml", "bytes");
    ASSERT_EQ(::symlink(path_.c_str(), home_.at("link").c_str()), 0);
    ASSERT_EQ(::mkfifo(home_.at("fifo").c_str(), 0644), 0);
    for (const char* name : {"link", "fifo", "", "none"}) {
        EXPECT_FALSE(verifyOnDisk(platform::posixFileLayer(), "bytes", home_.at(name))) << name;
    }
    for (const auto& [operation, effect] :
         {std::pair{FileOperation::open, Effect::fail}, std::pair{FileOperation::read, Effect::fail},
          std::pair{FileOperation::read, Effect::corrupt}}) {
        FaultyFileLayer files;
        files.inject({.at = 1, .effect = effect, .operation = operation});
        EXPECT_FALSE(verifyOnDisk(files, "bytes", path_));
    }
}

TEST_F(DurableWrite, SyncDirectories_GoesOnPastWhatIsGoneAndFallsBackToFsync) {
    home_.write("a/x", "");
    home_.write("c/x", "");
    FaultyFileLayer files;
    files.inject({.at = 1, .effect = Effect::fail, .operation = FileOperation::fullSync, .error = ENOTSUP});
    syncDirectories(files, {home_.at("a"), home_.at("b"), home_.at("c"), home_.at("c/x")});
    EXPECT_EQ(files.operationCount(FileOperation::fullSync), 3U);
    EXPECT_EQ(files.operationCount(FileOperation::sync), 1U);
    EXPECT_EQ(files.operationCount(FileOperation::close), 3U);
    const int folder = files.open(home_.at("a"), O_RDONLY | O_DIRECTORY, 0);
    for (const auto& [error, outcome] : {std::pair{ENOTSUP, 0}, std::pair{EIO, EIO}}) {
        files.inject({.at = 1, .effect = Effect::fail, .operation = FileOperation::fullSync, .error = error});
        EXPECT_EQ(syncDirectory(files, folder), outcome);
    }
    files.close(folder);
}

} // namespace
} // namespace corvane::archive
