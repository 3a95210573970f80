// Runs that are failed, cut off, killed or held up at every operation, and what the next run makes of it.
#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <utility>

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "archive/archive_error.h"
#include "archive/archive_fixture.h"
#include "archive/destination/time_limited_worker.h"

namespace corvane {
namespace {

using testing::Effect;
using testing::Fault;
using testing::FaultyFileLayer;
using testing::FileOperation;
using testing::mailText;
using testing::readWhole;
using testing::Tree;
using testing::treeOf;
using namespace std::chrono_literals;

class InterruptedRun : public testing::ArchiveFixture {
  protected:
    // An archive with one mail, and a run that adds four files in two folders.
    void SetUp() override {
        archive({old_});
        std::filesystem::copy(root, home.at("Start"), std::filesystem::copy_options::recursive);
        FaultyFileLayer counting;
        archive(messages_, counting);
        operationCount_ = counting.operationCount(root);
        expected_ = endState();
        std::filesystem::remove_all(root);
    }

    void startAgain() {
        std::filesystem::remove_all(root);
        std::filesystem::copy(home.at("Start"), root, std::filesystem::copy_options::recursive);
    }

    struct EndState {
        Tree files;
        std::vector<ArchivedEmailRecord> records; // by id

        friend bool operator==(const EndState&, const EndState&) = default;
    };

    EndState endState() const {
        EndState state{treeOf(root), index().records};
        state.files.erase("archive-index.json");
        std::ranges::sort(state.records, {}, &ArchivedEmailRecord::id);
        return state;
    }

    // Some temporary file of an index that never came is hidden and no mail.
    void expectTheNextRunHeals() {
        EXPECT_EQ(archive(messages_).failedCount, 0);
        EndState healed = endState();
        std::erase_if(healed.files, [](const auto& file) { return file.first.starts_with(".corvane-"); });
        EXPECT_EQ(healed, expected_);
    }

    // A run over faulty files, whether it ends or throws.
    std::optional<EmailArchiveRunResult> tryToArchive(FaultyFileLayer& files) {
        try {
            return archive(messages_, files);
        } catch (const ArchiveAccessError&) {
            return std::nullopt;
        }
    }

    const MailMessageRecord old_ = store("old", "旧邮件");
    const MessageList messages_{old_, store("a"), store("b"),
                                store("v", "变体", {mailText("v", "one"), mailText("v", "other")})};
    std::size_t operationCount_ = 0;
    EndState expected_;
};

TEST_F(InterruptedRun, AFailureOfAnyOperationCostsAtMostItsMessageAndIsHealed) {
    constexpr std::array errors{EIO, ENOSPC, EROFS};
    std::size_t failed = 0;
    for (std::size_t k = 1; k <= operationCount_; ++k) {
        SCOPED_TRACE("operation " + std::to_string(k));
        startAgain();
        FaultyFileLayer files;
        files.inject({.at = k,
                      .effect = Effect::fail,
                      .operation = {},
                      .error = errors[k % errors.size()],
                      .path = root});
        const auto result = tryToArchive(files);
        if (result) {
            EXPECT_LE(result->failedCount, 1);
            EXPECT_EQ(static_cast<std::size_t>(result->archivedCount) + 1, index().records.size());
            failed += static_cast<std::size_t>(result->failedCount);
        }
        expectEveryRecordProved();
        expectTheNextRunHeals();
        if (HasFailure()) return;
    }
    EXPECT_GT(failed, operationCount_ / 3);
}

TEST_F(InterruptedRun, APowerLossAtAnyOperationIsHealed) {
    for (std::size_t k = 1; k <= operationCount_; ++k) {
        SCOPED_TRACE("operation " + std::to_string(k));
        startAgain();
        FaultyFileLayer files;
        files.inject({.at = k, .effect = Effect::crash, .operation = {}, .error = EIO, .path = root});
        tryToArchive(files);
        ASSERT_TRUE(files.hasCrashed());
        files.losePower();
        expectEveryRecordProved();
        expectTheNextRunHeals();
        if (HasFailure()) return;
    }
}

TEST_F(InterruptedRun, AKilledProcessIsHealed) {
#if defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the thread sanitizer allows no threads in the child of a process that has some";
#endif
    for (std::size_t k = 1; k <= operationCount_; ++k) {
        SCOPED_TRACE("operation " + std::to_string(k));
        startAgain();
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            FaultyFileLayer files;
            files.observe([&](const testing::RecordedOperation& operation) {
                const bool isCounted = operation.path.find(root) != std::string::npos;
                if (isCounted && files.operationCount(root) + 1 == k) ::kill(::getpid(), SIGKILL);
            });
            tryToArchive(files);
            ::_exit(0);
        }
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
        expectEveryRecordProved();
        expectTheNextRunHeals();
        if (HasFailure()) return;
    }
}

TEST_F(InterruptedRun, AFullDiskFailsTheMessagesAndTheNextRunHealsThem) {
    startAgain();
    FaultyFileLayer files;
    // Three messages can't be written, then there is room for the index.
    files.inject({.at = 1, .effect = Effect::shorten, .operation = FileOperation::write});
    for (const std::size_t at : {2, 3, 4}) {
        files.inject({.at = at, .effect = Effect::fail, .operation = FileOperation::write, .error = ENOSPC});
    }
    const auto result = archive(messages_, files);
    EXPECT_EQ(result.archivedCount, 0);
    EXPECT_EQ(result.skippedAlreadyArchived, 1);
    ASSERT_EQ(result.failedCount, 3);
    for (const EmailArchiveFailure& failure : result.failures) {
        EXPECT_EQ(failure.reason, "写入文件失败：磁盘已满，空间不足");
    }
    EXPECT_TRUE(result.variantWarnings.empty());
    EXPECT_EQ(index().records.size(), 1U);
    expectTheNextRunHeals();
}

TEST_F(InterruptedRun, AMessageIsRecordedWhenAllItsVariantsAreInTheirPlaces) {
    startAgain();
    FaultyFileLayer files;
    files.inject({.at = 4, .effect = Effect::fail, .operation = FileOperation::write, .error = ENOSPC});
    const auto result = archive(messages_, files);
    EXPECT_EQ(result.archivedCount, 2);
    EXPECT_EQ(result.failedCount, 1);
    EXPECT_TRUE(result.variantWarnings.empty());
    EXPECT_EQ(index().records.size(), 3U);
    const auto healed = archive(messages_);
    EXPECT_EQ(healed.archivedCount, 1);
    EXPECT_EQ(healed.skippedAlreadyArchived, 4);
    EXPECT_EQ(endState(), expected_);
}

TEST_F(InterruptedRun, BytesThatDidNotReachTheDiskAreNoArchivedMail) {
    for (const FileOperation operation : {FileOperation::write, FileOperation::read}) {
        startAgain();
        FaultyFileLayer files;
        files.inject(
            {.at = 1, .effect = Effect::corrupt, .operation = operation, .error = EIO, .path = "每周报告"});
        const auto result = archive(messages_, files);
        ASSERT_EQ(result.failedCount, 1);
        EXPECT_EQ(result.failures[0].reason, "写入后从磁盘校验内容不一致（数据未真正落盘）");
        EXPECT_EQ(result.failures[0].subject, "每周报告");
        expectEveryRecordProved();
        EXPECT_EQ(archive(messages_).failedCount, 0);
        EXPECT_EQ(endState(), expected_);
    }
}

TEST_F(InterruptedRun, ADiskThatVanishesIsNotWrittenToAgainAndIsHealedWhenItIsBack) {
    startAgain();
    FaultyFileLayer files;
    std::size_t syncs = 0;
    files.observe([&](const testing::RecordedOperation& operation) {
        if (operation.operation == FileOperation::sync && ++syncs == 2) {
            std::filesystem::rename(root, home.at("Unplugged"));
        }
    });
    EXPECT_THROW(archive(messages_, files), ArchiveAccessError);
    EXPECT_FALSE(std::filesystem::exists(root));
    std::filesystem::rename(home.at("Unplugged"), root);
    expectEveryRecordProved();
    expectTheNextRunHeals();
}

class HangingDestination : public InterruptedRun {
  protected:
    // A run with a short time limit.
    EmailArchiveRunResult hurriedRun(FaultyFileLayer& files) {
        auto hurried = options();
        hurried.timeLimit = 500ms;
        return MailEmailArchiver(files, hurried).archive(messages_, root, {});
    }
};

TEST_F(HangingDestination, CostsOneMessageWhereverItHangsAndDoesNoHarmWhenItComesBack) {
    for (const FileOperation operation :
         {FileOperation::stat, FileOperation::open, FileOperation::write, FileOperation::sync,
          FileOperation::bypassCache, FileOperation::read, FileOperation::close}) {
        SCOPED_TRACE(static_cast<int>(operation));
        startAgain();
        FaultyFileLayer files;
        files.inject(
            {.at = 1, .effect = Effect::hang, .operation = operation, .error = EIO, .path = "每周报告"});
        const auto result = hurriedRun(files);
        EXPECT_EQ(result.archivedCount, 3);
        ASSERT_EQ(result.failedCount, 1);
        EXPECT_EQ(result.failures[0].reason,
                  "写入超时（目标位置无响应，可能是 "
                  "iCloud/云盘离线或正在下载占位符），已跳过该邮件。建议改用本地位置。");
        expectEveryRecordProved();
        // Healed while the write still hangs; what comes back then finds the file proved.
        expectTheNextRunHeals();
        files.release();
        archive::waitForAbandonedJobs();
        EXPECT_EQ(endState(), expected_);
    }
}

TEST_F(HangingDestination, EndsTheRunWhenTheRootOrTheIndexHangs) {
    struct {
        FileOperation operation;
        std::string path;
        const char* text;
    } const cases[] = {
        {FileOperation::stat, root, "无法创建归档文件夹“"},
        {FileOperation::open, root, "无法使用归档文件夹“"},
        {FileOperation::lock, root, "无法使用归档文件夹“"},
        {FileOperation::read, "index.json", "无法读取归档索引“"},
        {FileOperation::fullSync, root, "无法保存归档索引“"},
        {FileOperation::rename, root, "无法保存归档索引“"},
    };

    for (const auto& [operation, path, text] : cases) {
        startAgain();
        FaultyFileLayer files;
        files.inject({.at = 1, .effect = Effect::hang, .operation = operation, .error = EIO, .path = path});
        try {
            hurriedRun(files);
            ADD_FAILURE();
        } catch (const ArchiveAccessError& error) {
            EXPECT_TRUE(std::string(error.what()).starts_with(text)) << error.what();
            EXPECT_TRUE(std::string(error.what()).ends_with("目标位置无响应")) << error.what();
        }
        files.release();
        archive::waitForAbandonedJobs();
        expectEveryRecordProved();
        expectTheNextRunHeals();
    }
}

} // namespace
} // namespace corvane
