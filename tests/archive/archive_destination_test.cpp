// The index and the folders of a destination that other programs change, that fail, and that go away.
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "archive/archive_error.h"
#include "archive/archive_fixture.h"
#include "archive/destination/index_records.h"
#include "platform/threads/time_limited_worker.h"
#include "records/archive_files/archive_index_decoder.h"

namespace corvane::testing {
namespace {

namespace fs = std::filesystem;

using namespace std::chrono_literals;

class Destination : public ArchiveFixture {
  protected:
    // The text with which a run over these files ends; empty when it ends well.
    std::string endOfRun(const MessageList& messages, platform::FileLayer& files) {
        return errorOf([&] { result_ = archive(messages, files); });
    }

    // Calls `change` once, before the write of the file with this number.
    static void beforeWrite(FaultyFileLayer& files, std::size_t number, const std::function<void()>& change) {
        files.observe([&files, number, change, done = false](const RecordedOperation& operation) mutable {
            if (done || operation.operation != FileOperation::write) return;
            if (files.operationCount(FileOperation::write) + 1 < number) return;
            done = true;
            change();
        });
    }

    MessageList eight() {
        MessageList messages;
        for (const char* id : {"1", "2", "3", "4", "5", "6", "7", "8"}) messages.push_back(store(id));
        return messages;
    }

    EmailArchiveRunResult result_;
};

TEST_F(Destination, AnIndexThatNobodyCouldLookAtEndsTheRunBeforeAnythingIsWritten) {
    const std::string index = "archive-index.json";
    constexpr int staleHandle = ESTALE;

    struct {
        const char* what;
        FileOperation operation;
        int error;
        Effect effect;
        const char* state; // of the index, where it is another one
        const char* reason;
    } const cases[] = {
        {"open", FileOperation::open, staleHandle, Effect::fail, "", "无法读取归档索引“"},
        {"open for good", FileOperation::open, EIO, Effect::failFromHere, "", "：磁盘读写出错"},
        {"stat", FileOperation::stat, staleHandle, Effect::failFromHere, "", "无法读取归档索引“"},
        {"read", FileOperation::read, EIO, Effect::fail, "", "：磁盘读写出错"},
        {"read for good", FileOperation::read, EIO, Effect::failFromHere, "", "：磁盘读写出错"},
        {"in the cloud", FileOperation::lock, EIO, Effect::fail, "cloud", "：文件还在云端"},
        {"a link", FileOperation::lock, EIO, Effect::fail, "link", "无法读取归档索引“"},
        {"a folder", FileOperation::lock, EIO, Effect::fail, "folder", "无法读取归档索引“"},
        {"too large", FileOperation::lock, EIO, Effect::fail, "large", "无法读取归档索引“"},
        {"damaged, and can't be kept", FileOperation::rename, EIO, Effect::fail, "damaged",
         "归档索引已损坏，且无法另存“"},
    };

    for (const auto& [what, operation, error, effect, state, reason] : cases) {
        SCOPED_TRACE(what);
        fs::remove_all(root);
        archive({store("a"), store("b")});
        if (state == std::string("cloud")) fs::rename(at(index), at(".archive-index.json.icloud"));
        if (state == std::string("link")) {
            fs::rename(at(index), home.at("elsewhere.json"));
            fs::create_symlink(home.at("elsewhere.json"), at(index));
        }
        if (state == std::string("folder")) {
            fs::remove(at(index));
            fs::create_directory(at(index));
        }
        if (state == std::string("damaged")) home.write("Archive/archive-index.json", "{");
        const Tree before = treeOf(root);
        if (state == std::string("large")) fs::resize_file(at(index), largestArchiveIndexBytes + 1);
        FaultyFileLayer files;
        files.inject({.at = 1, .effect = effect, .operation = operation, .error = error, .path = index});
        EXPECT_THAT(endOfRun({store("c")}, files), ::testing::HasSubstr(reason));
        if (state == std::string("large")) fs::resize_file(at(index), before.at(index).size());
        EXPECT_EQ(treeOf(root), before);
        EXPECT_EQ(files.operationCount(FileOperation::write), 0U);
    }
}

TEST_F(Destination, AnIndexThatComesFromTheCloudIsWaitedFor) {
    archive({store("a")});
    fs::rename(at("archive-index.json"), at(".archive-index.json.icloud"));
    auto cloud = options();
    std::thread provider;
    cloud.bringFromCloud = [&](const std::string& path) {
        provider = std::thread([this, path] { fs::rename(at(".archive-index.json.icloud"), path); });
        return true;
    };
    const auto result = MailEmailArchiver(platform::posixFileLayer(), cloud).archive({store("b")}, root, {});
    provider.join();
    EXPECT_EQ(result.archivedCount, 1);
    EXPECT_EQ(index().records.size(), 2U);
}

TEST_F(Destination, AnIndexThatChangedMeanwhileIsMerged) {
    archive({store("old", "旧邮件")});
    EmailArchiveIndex theirs = index();
    theirs.createdAt -= std::chrono::hours(1);
    ArchivedEmailRecord record = theirs.records[0];
    theirs.records.clear();
    for (const char* id : {"mid:t1", "mid:t2", "mid:3"}) {
        record.id = id;
        record.messageIdentifier = SharedText(record.id.str().substr(4));
        theirs.records.push_back(record);
    }
    const std::string text = encodeArchiveIndex(theirs);

    FaultyFileLayer files;
    beforeWrite(files, 4, [&] {
        home.write("synced", text);
        fs::rename(home.at("synced"), at("archive-index.json"));
    });
    EXPECT_EQ(endOfRun(eight(), files), "");
    EXPECT_EQ(result_.archivedCount, 8);
    SharedTextSet ids;
    for (const ArchivedEmailRecord& merged : index().records) ids.insert(merged.id);
    EXPECT_EQ(ids, (SharedTextSet{"mid:t1", "mid:t2", "mid:3", "mid:old", "mid:1", "mid:2", "mid:3#v1",
                                  "mid:4", "mid:5", "mid:6", "mid:7", "mid:8"}));
    EXPECT_EQ(index().createdAt, theirs.createdAt);

    // One that came and can't be used ends the run without a replacement; nothing is lost by that.
    for (const char* broken : {"{", ""}) {
        home.write("Archive/archive-index.json", text);
        FaultyFileLayer again;
        beforeWrite(again, 1, [&] {
            home.write("synced", broken);
            fs::rename(home.at("synced"), at("archive-index.json"));
        });
        EXPECT_THAT(endOfRun({store("n")}, again), ::testing::HasSubstr("无法保存归档索引“"));
        EXPECT_EQ(readWhole(at("archive-index.json")), broken);
    }
}

TEST(MergedIndexes, KeepBothSidesAndOneRecordForOneMail) {
    const auto record = [](const char* id, std::optional<SharedText> hash) {
        ArchivedEmailRecord made;
        made.id = id;
        made.messageIdentifier = "a";
        made.emlRelativePath = "p";
        made.contentHash = hash;
        return made;
    };
    const EmailArchiveIndex ours{Date(2s), Date(5s), {record("mid:a", "h1"), record("mid:a#v1", "h2")}};
    const EmailArchiveIndex same{Date(3s), Date(4s), {record("mid:a", {}), record("mid:a#v1", "h3")}};
    const EmailArchiveIndex merged = archive::mergedIndexes(ours, same);
    EXPECT_EQ(merged.createdAt, Date(2s));
    ASSERT_EQ(merged.records.size(), 3U);
    EXPECT_EQ(merged.records[0], record("mid:a", "h1"));
    EXPECT_EQ(merged.records[1], record("mid:a#v1", "h3"));
    EXPECT_EQ(merged.records[2], record("mid:a#v2", "h2"));
    EXPECT_EQ(archive::mergedIndexes(merged, merged), merged);
}

TEST_F(Destination, AnotherFolderUnderItsPathIsNotWrittenTo) {
    const std::string other = encodeArchiveIndex({now, now, {}});
    for (const bool isThereAnother : {true, false}) {
        fs::remove_all(root);
        const MessageList messages = eight();
        FaultyFileLayer files;
        beforeWrite(files, 4, [&] {
            fs::rename(root, home.at("Unplugged"));
            if (isThereAnother) home.write("Archive/archive-index.json", other);
        });
        EXPECT_THAT(endOfRun(messages, files), ::testing::EndsWith("：位置不存在或磁盘未连接"));
        EXPECT_EQ(files.operationCount(FileOperation::write), 4U) << "the run ends before the next message";
        EXPECT_EQ(fs::exists(root), isThereAnother);
        if (isThereAnother) {
            EXPECT_EQ(treeOf(root), (Tree{{"archive-index.json", other}}));
        }
        fs::remove_all(root);
        fs::rename(home.at("Unplugged"), root);
        const auto result = archive(messages);
        EXPECT_EQ(result.archivedCount + result.skippedAlreadyArchived, 8);
        expectTrue(result);
    }
}

TEST_F(Destination, AFolderThatIsSwappedLeadsNothingOutAndCountsNothing) {
    const MessageList messages = eight();
    const std::string folder = "2020/工作";
    for (const bool byLink : {true, false}) {
        fs::remove_all(root);
        fs::remove_all(home.at("outside"));
        home.makeFolder("outside/new");
        FaultyFileLayer files;
        beforeWrite(files, 3, [&] {
            fs::rename(at(folder), home.at("outside/old"));
            if (byLink) {
                fs::create_directory_symlink(home.at("outside/new"), at(folder));
            } else {
                fs::create_directory(at(folder));
            }
        });
        EXPECT_EQ(endOfRun(messages, files), "");
        EXPECT_EQ(treeOf(home.at("outside/new")), Tree{}) << "byLink " << byLink;
        // The file at work was still made in the folder that was moved.
        EXPECT_EQ(result_.failedCount, byLink ? 8 : 3);
        EXPECT_EQ(result_.archivedCount, byLink ? 0 : 5);
        EXPECT_EQ(index().records.size(), static_cast<std::size_t>(result_.archivedCount));
        expectTrue(result_);
    }
}

TEST_F(Destination, WhatARunHasReportedOutlivesAPowerLoss) {
    const MessageList messages{store("a"), store("b", "x", {mailText("b", "1"), mailText("b", "22")})};
    const std::string newRoot = home.at("new/deeper/Archive");
    FaultyFileLayer files;
    const auto result = MailEmailArchiver(files, options()).archive(messages, newRoot, {});
    EXPECT_EQ(result.archivedCount, 3);
    files.losePower();
    const auto index = readArchiveIndex(newRoot + "/archive-index.json");
    ASSERT_TRUE(index);
    ASSERT_EQ(index->records.size(), 3U);
    for (const ArchivedEmailRecord& record : index->records) {
        EXPECT_EQ(static_cast<std::int64_t>(readWhole(newRoot + "/" + record.emlRelativePath.str()).size()),
                  record.sizeBytes);
    }
}

TEST_F(Destination, FoldersThatCannotBeSyncedHoldNothingThatIsRecorded) {
    FaultyFileLayer files;
    for (const FileOperation operation : {FileOperation::fullSync, FileOperation::sync}) {
        files.inject({.at = operation == FileOperation::sync ? 3U : 1U,
                      .effect = Effect::failFromHere,
                      .operation = operation,
                      .error = EIO,
                      .path = "2020/工作"});
    }
    EXPECT_EQ(endOfRun({store("a"), store("b")}, files), "");
    EXPECT_EQ(result_.archivedCount, 0);
    EXPECT_EQ(result_.failedCount, 2);
    EXPECT_TRUE(index().records.empty());
    EXPECT_EQ(archive({store("a"), store("b")}).failedCount, 0);
}

TEST_F(Destination, AStopEndsARunWhoseDestinationHangs) {
    for (const FileOperation operation : {FileOperation::read, FileOperation::write}) {
        fs::remove_all(root);
        archive({store("old", "旧邮件")});
        FaultyFileLayer files;
        files.inject({.at = 1, .effect = Effect::hang, .operation = operation, .error = EIO, .path = root});
        std::stop_source stop;
        std::thread user([&] {
            files.waitUntilHanging();
            stop.request_stop();
        });
        const auto start = std::chrono::steady_clock::now();
        errorOf(
            [&] { MailEmailArchiver(files, options()).archive({store("a")}, root, {}, stop.get_token()); });
        EXPECT_LT(std::chrono::steady_clock::now() - start, 10s);
        user.join();
        files.release();
        platform::waitForAbandonedJobs();
        expectEveryRecordProved();
    }
}

} // namespace
} // namespace corvane::testing
