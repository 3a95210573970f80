// Runs that are failed, cut off, killed or held up at every operation, and what the next run makes of it.
#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <utility>

#include <gtest/gtest.h>

#include "archive/archive_error.h"
#include "archive/archive_fixture.h"
#include "platform/threads/time_limited_worker.h"

namespace corvane::testing {
namespace {

using namespace std::chrono_literals;

class InterruptedRun : public ArchiveFixture {
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
        std::optional<EmailArchiveRunResult> result;
        errorOf([&] { result = archive(messages_, files); });
        return result;
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

TEST_F(InterruptedRun, APowerLossOrAKillAtAnyOperationIsHealed) {
    for (std::size_t step = 2; step < 2 * operationCount_ + 2; ++step) {
        const bool isKill = step % 2 == 1; // what the cache held isn't lost
        SCOPED_TRACE("operation " + std::to_string(step / 2));
        startAgain();
        FaultyFileLayer files;
        files.inject({.at = step / 2, .effect = Effect::crash, .operation = {}, .error = EIO, .path = root});
        tryToArchive(files);
        ASSERT_TRUE(files.hasCrashed());
        if (!isKill) files.losePower();
        expectEveryRecordProved();
        expectTheNextRunHeals();
        if (HasFailure()) return;
    }
}

TEST_F(InterruptedRun, AMessageIsRecordedWhenAllItsVariantsAreInTheirPlaces) {
    startAgain();
    FaultyFileLayer files;
    files.inject({.at = 4, .effect = Effect::fail, .operation = FileOperation::write, .error = ENOSPC});
    const auto result = archive(messages_, files);
    EXPECT_EQ(countsOf(result), (Counts{2, 1, 1}));
    EXPECT_TRUE(result.variantWarnings.empty());
    EXPECT_EQ(index().records.size(), 3U);
    EXPECT_EQ(countsOf(archive(messages_)), (Counts{1, 4, 0}));
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
        platform::waitForAbandonedJobs();
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
        const std::string end = errorOf([&] { hurriedRun(files); });
        EXPECT_TRUE(end.starts_with(text) && end.ends_with("目标位置无响应")) << end;
        files.release();
        platform::waitForAbandonedJobs();
        expectEveryRecordProved();
        expectTheNextRunHeals();
    }
}

} // namespace
} // namespace corvane::testing
