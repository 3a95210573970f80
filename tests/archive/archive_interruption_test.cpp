// Runs that are failed, cut off, killed or held up at every operation, and what the next run makes of it.
#include <algorithm>
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
#include "archive/time_limited_worker.h"

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
        operationCount_ = counting.operationCount();
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

    // What a reader of the archive may always rely on.
    void expectEveryRecordProved() {
        for (const ArchivedEmailRecord& record : index().records) {
            const std::string content = readWhole(at(record.emlRelativePath.view()));
            EXPECT_EQ(static_cast<std::int64_t>(content.size()), record.sizeBytes) << record.id;
            EXPECT_NE(content.find(record.messageIdentifier->view()), std::string::npos) << record.id;
        }
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
    std::size_t failed = 0;
    for (const int error : {EIO, ENOSPC, EROFS}) {
        for (std::size_t k = 1; k <= operationCount_; ++k) {
            SCOPED_TRACE("operation " + std::to_string(k));
            startAgain();
            FaultyFileLayer files;
            files.inject({.at = k, .effect = Effect::fail, .operation = {}, .error = error});
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
    }
    EXPECT_GT(failed, operationCount_);
}

TEST_F(InterruptedRun, APowerLossAtAnyOperationIsHealed) {
    for (std::size_t k = 1; k <= operationCount_; ++k) {
        SCOPED_TRACE("operation " + std::to_string(k));
        startAgain();
        FaultyFileLayer files;
        files.inject({.at = k, .effect = Effect::crash});
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
            files.observe([&](const testing::RecordedOperation&) {
                if (files.operationCount() + 1 == k) ::kill(::getpid(), SIGKILL);
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
    for (const EmailArchiveFailure& failure : result.failures) EXPECT_EQ(failure.reason, "写入文件失败");
    EXPECT_TRUE(result.variantWarnings.empty());
    EXPECT_EQ(index().records.size(), 1U);
    expectTheNextRunHeals();
}

TEST_F(InterruptedRun, AVariantThatFailsKeepsThoseBeforeItAndTheNextRunAddsTheRest) {
    startAgain();
    FaultyFileLayer files;
    files.inject({.at = 4, .effect = Effect::fail, .operation = FileOperation::write, .error = ENOSPC});
    const auto result = archive(messages_, files);
    EXPECT_EQ(result.archivedCount, 3);
    EXPECT_EQ(result.failedCount, 1);
    EXPECT_TRUE(result.variantWarnings.empty());
    EXPECT_EQ(index().records.back().id, "mid:v#v1");
    const auto healed = archive(messages_);
    EXPECT_EQ(healed.archivedCount, 1);
    EXPECT_EQ(healed.skippedAlreadyArchived, 4);
    EXPECT_EQ(endState(), expected_);
}

TEST_F(InterruptedRun, BytesThatDidNotReachTheDiskAreNoArchivedMail) {
    for (const FileOperation operation : {FileOperation::write, FileOperation::read}) {
        startAgain();
        FaultyFileLayer files;
        files.inject({.at = 1, .effect = Effect::corrupt, .operation = operation});
        const auto result = archive(messages_, files);
        ASSERT_EQ(result.failedCount, 1);
        EXPECT_EQ(result.failures[0].reason, "写入后从磁盘校验内容不一致（数据未真正落盘）");
        EXPECT_EQ(result.failures[0].subject, "每周报告");
        expectEveryRecordProved();
        EXPECT_EQ(archive(messages_).failedCount, 0);
        EndState healed = endState();
        healed.files.erase("2020/工作/2020-09-13 每周报告（原有文件）.eml");
        EXPECT_EQ(healed, expected_);
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
    // The first of these operations in the write of a message: before it there is only the open of the lock.
    for (const FileOperation operation :
         {FileOperation::makeDirectory, FileOperation::open, FileOperation::write, FileOperation::sync,
          FileOperation::bypassCache, FileOperation::read, FileOperation::close}) {
        SCOPED_TRACE(static_cast<int>(operation));
        startAgain();
        FaultyFileLayer files;
        files.inject({.at = operation == FileOperation::open ? 2U : 1U,
                      .effect = Effect::hang,
                      .operation = operation});
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
    for (const auto& [operation, text] : {std::pair{FileOperation::stat, "无法创建归档文件夹“"},
                                          std::pair{FileOperation::open, "无法使用归档文件夹“"},
                                          std::pair{FileOperation::rename, "无法保存归档索引“"}}) {
        startAgain();
        FaultyFileLayer files;
        files.inject({.at = 1, .effect = Effect::hang, .operation = operation});
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
