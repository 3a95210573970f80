#include "platform/files/writing/durable_file.h"

#include <filesystem>
#include <stdexcept>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/files/directory.h"
#include "platform/paths.h"
#include "support/faulty_file_layer.h"
#include "support/temporary_home.h"

namespace corvane::platform {
namespace {

using testing::Effect;
using testing::FaultyFileLayer;
using testing::FileOperation;
using testing::TemporaryHome;

std::size_t entryCount(const std::string& folder) {
    return listDirectory(folder, HiddenEntries::include)->size();
}

// Both forms, so that every case holds for either.
std::error_code write(FileLayer& files, const std::string& path, const std::string& content, bool inChunks) {
    if (!inChunks) return writeFileAtomically(files, path, content);
    return writeFileAtomically(files, path, [&](const ByteSink& sink) {
        for (std::size_t at = 0; at < content.size(); at += 700'000) {
            sink(std::string_view(content).substr(at, 700'000));
        }
    });
}

class DurableFile : public ::testing::TestWithParam<bool> {
  protected:
    const TemporaryHome home_;
    const std::string old_ = std::string(3'000'000, 'o');
    const std::string new_ = std::string(2'500'000, 'n').append("end");
    const std::string path_ = home_.write("folder/index.json", old_);
    const std::string folder_ = home_.at("folder");
};

INSTANTIATE_TEST_SUITE_P(WholeAndChunked, DurableFile, ::testing::Bool());

TEST_P(DurableFile, Write_ReplacesTheContentAndKeepsThePermissions) {
    std::filesystem::permissions(path_, std::filesystem::perms(0600));
    FaultyFileLayer files;
    EXPECT_FALSE(write(files, path_, new_, GetParam()));
    EXPECT_EQ(readFile(path_), new_);
    EXPECT_FALSE(write(files, path_, "", GetParam()));
    EXPECT_EQ(readFile(path_), "");
    struct stat status{};
    ::stat(path_.c_str(), &status);
    EXPECT_EQ(status.st_mode & 0777, 0600U);
    EXPECT_EQ(entryCount(folder_), 1U);
}

TEST_P(DurableFile, Write_SurvivesInterruptionsAndShortWritesAtEveryOperation) {
    FaultyFileLayer counting;
    ASSERT_FALSE(write(counting, path_, old_, GetParam()));
    for (std::size_t k = 1; k <= counting.operationCount(); ++k) {
        FaultyFileLayer files;
        files.inject({.at = k, .effect = Effect::fail, .operation = {}, .error = EINTR});
        files.inject({.at = 1, .effect = Effect::shorten, .operation = FileOperation::write});
        const std::string content = new_ + std::to_string(k);
        EXPECT_FALSE(write(files, path_, content, GetParam())) << k;
        EXPECT_EQ(readFile(path_), content) << k;
        EXPECT_EQ(entryCount(folder_), 1U) << k;
    }
}

TEST_P(DurableFile, Write_FailingAtAnyOperationLeavesTheOldContentAndNoRemains) {
    FaultyFileLayer counting;
    ASSERT_FALSE(write(counting, path_, old_, GetParam()));
    bool hasRenamed = false;
    for (std::size_t k = 1; k <= counting.operationCount(); ++k) {
        const FileOperation operation = counting.record()[k - 1].operation;
        SCOPED_TRACE("operation " + std::to_string(k));
        FaultyFileLayer files;
        files.inject({.at = k, .effect = Effect::fail, .operation = {}, .error = ENOSPC});
        const std::error_code error = write(files, path_, new_, GetParam());
        const auto content = readFile(path_);
        // Only looking for the old permissions and closing a folder may fail without harm.
        if (operation != FileOperation::stat && !(hasRenamed && operation == FileOperation::close)) {
            EXPECT_EQ(error.value(), ENOSPC);
        }
        EXPECT_EQ(content, hasRenamed || !error ? new_ : old_);
        EXPECT_EQ(entryCount(folder_), 1U);
        hasRenamed = hasRenamed || operation == FileOperation::rename;
        home_.write("folder/index.json", old_);
    }
    EXPECT_TRUE(hasRenamed);
}

TEST_P(DurableFile, Write_CutByACrashOrAPowerLossAnywhereLeavesOldOrNew) {
    FaultyFileLayer counting;
    ASSERT_FALSE(write(counting, path_, old_, GetParam()));
    for (std::size_t k = 1; k <= counting.operationCount(); ++k) {
        FaultyFileLayer files;
        files.inject({.at = k, .effect = Effect::crash});
        write(files, path_, new_, GetParam());
        ASSERT_TRUE(files.hasCrashed());
        files.losePower();
        const auto content = readFile(path_);
        EXPECT_TRUE(content == old_ || content == new_) << "crash at operation " << k;
        home_.write("folder/index.json", old_);
    }
    FaultyFileLayer files;
    ASSERT_FALSE(write(files, path_, new_, GetParam()));
    files.losePower();
    EXPECT_EQ(readFile(path_), new_) << "a save that was reported as done";
}

TEST_P(DurableFile, Write_ToleratesFoldersThatCannotBeSynced) {
    for (const int error : {EINVAL, ENOTSUP}) {
        FaultyFileLayer files;
        files.inject({.at = 2, .effect = Effect::fail, .operation = FileOperation::sync, .error = error});
        EXPECT_FALSE(write(files, path_, new_, GetParam()));
    }
    FaultyFileLayer files;
    files.inject({.at = 2, .effect = Effect::fail, .operation = FileOperation::sync, .error = EIO});
    EXPECT_EQ(write(files, path_, new_, GetParam()).value(), EIO);
}

TEST_P(DurableFile, Write_NeverFollowsALinkOutOfTheFolder) {
    const std::string victim = home_.write("victim", "precious");
    ASSERT_EQ(::symlink(victim.c_str(), home_.at("folder/link").c_str()), 0);
    EXPECT_FALSE(write(posixFileLayer(), home_.at("folder/link"), new_, GetParam()));
    EXPECT_EQ(readFile(victim), "precious");
    EXPECT_EQ(readFile(home_.at("folder/link")), new_);
}

TEST(DurableFileNames, Write_WorksForTheLongestNameThatAFileCanHave) {
    const TemporaryHome home;
    const std::string path = home.at(std::string(255, 'n'));
    EXPECT_FALSE(writeFileAtomically(posixFileLayer(), path, "x"));
    EXPECT_EQ(readFile(path), "x");
    EXPECT_EQ(writeFileAtomically(posixFileLayer(), home.at("nothing/x"), "x").value(), ENOENT);
}

TEST(DurableFileProducer, ThatThrowsLeavesTheOldContentAndNoRemains) {
    const TemporaryHome home;
    const std::string path = home.write("folder/cache.json", "old");
    const auto produce = [](const ByteSink& sink) {
        sink(std::string(2'000'000, 'x'));
        throw std::runtime_error("no more");
    };
    EXPECT_THROW(writeFileAtomically(posixFileLayer(), path, produce), std::runtime_error);
    EXPECT_EQ(readFile(path), "old");
    EXPECT_EQ(entryCount(home.at("folder")), 1U);
}

TEST(DurableFileProducer, ManySmallChunksBecomeFewWrites) {
    const TemporaryHome home;
    FaultyFileLayer files;
    std::string expected;
    const auto produce = [&](const ByteSink& sink) {
        for (int i = 0; i < 400'000; ++i) {
            const std::string chunk = std::to_string(i) + ",";
            expected += chunk;
            sink(chunk);
        }
    };
    EXPECT_FALSE(writeFileAtomically(files, home.at("cache.json"), produce));
    EXPECT_EQ(readFile(home.at("cache.json")), expected);
    EXPECT_LE(files.operationCount(FileOperation::write), expected.size() / 1'000'000 + 1);
}

TEST(CreateDirectories, MakesWhatIsMissingAndRefusesWhatIsInTheWay) {
    const TemporaryHome home;
    home.write("file", "x");
    ASSERT_EQ(::symlink("nowhere", home.at("dangling").c_str()), 0);
    ASSERT_EQ(::symlink(home.path().c_str(), home.at("link").c_str()), 0);
    FileLayer& files = posixFileLayer();

    struct {
        std::string path;
        int error;
    } const cases[] = {
        {home.at("a/b/c/"), 0},
        {home.at("a/b/c"), 0},
        {home.at("link/d"), 0},
        {home.at("file"), ENOTDIR},
        {home.at("file/x"), ENOTDIR},
        {home.at("dangling"), EEXIST},
        {home.at(std::string(300, 'n')), ENAMETOOLONG},
        {"", ENOENT},
    };

    for (const auto& [path, error] : cases) {
        EXPECT_EQ(createDirectories(files, path).value(), error) << path;
        EXPECT_EQ(isDirectory(path), error == 0) << path;
    }
}

TEST(CreateDirectories, AcceptsFoldersThatAnotherProcessMakesMeanwhile) {
    const TemporaryHome home;
    FaultyFileLayer files;
    files.observe([&](const testing::RecordedOperation& operation) {
        if (operation.operation == FileOperation::makeDirectory) {
            std::filesystem::create_directories(operation.path);
        }
    });
    EXPECT_FALSE(createDirectories(files, home.at("a/b/c")));
    EXPECT_EQ(files.operationCount(FileOperation::makeDirectory), 3U);
}

} // namespace
} // namespace corvane::platform
