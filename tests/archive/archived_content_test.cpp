// What a run makes of copies and of files that it has met before: nothing counts as archived whose bytes the
// archive doesn't hold.
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "archive/archive_fixture.h"
#include "archive/message_extraction.h"
#include "platform/files/directory.h"
#include "records/archived/stable_id.h"

namespace corvane::testing {
namespace {

using Outcome = FileReading::Outcome;

constexpr const char* firstPath = "2020/工作/2020-09-13 每周报告.eml";
constexpr const char* firstVariantPath = "2020/工作/2020-09-13 每周报告（变体1）.eml";

class ArchivedContent : public ArchiveFixture {
  protected:
    std::vector<std::string> ids() const {
        std::vector<std::string> ids;
        for (const ArchivedEmailRecord& record : index().records) ids.push_back(record.id.str());
        return ids;
    }

    // Whether some file of the archive holds exactly these bytes.
    bool holds(const std::string& mail) const {
        for (const auto& [path, content] : treeOf(root)) {
            if (content == mail) return true;
        }
        return false;
    }

    static std::vector<std::string> reasons(const EmailArchiveRunResult& result) {
        std::vector<std::string> reasons;
        for (const EmailArchiveFailure& failure : result.failures) reasons.push_back(failure.reason);
        return reasons;
    }

    void dropHashes() {
        auto withoutHashes = index();
        for (ArchivedEmailRecord& record : withoutHashes.records) record.contentHash.reset();
        home.write("Archive/archive-index.json", encodeArchiveIndex(withoutHashes));
    }
};

TEST_F(ArchivedContent, AFileThatMailHasGivenToAnotherMessageIsMissing) {
    const std::string newsletter = mailText("news@x", "buy now\n", "Subject: Buy now\n");
    MailMessageRecord tax = store("tax@x", "Tax 2019", {newsletter});
    const auto result = archive({tax});
    EXPECT_EQ(reasons(result),
              std::vector<std::string>{"邮件文件不存在，可能已被 Mail 重新索引，请重新扫描后再试。"});
    EXPECT_TRUE(index().records.empty());
    EXPECT_EQ(result.copyReadings.at(0).path, tax.fileURL.path());

    // With a copy that is still its own, the rest is archived, and told.
    const std::string own = mailText("tax@x", "tax\n", "Subject: Tax 2019\n");
    tax = store("tax@x", "Tax 2019", {newsletter, own});
    const auto mixed = archive({tax});
    EXPECT_EQ(mixed.archivedCount, 1);
    EXPECT_EQ(mixed.failures.at(0).messageFileURL, tax.fileURL);
    EXPECT_TRUE(holds(own));
    EXPECT_FALSE(holds(newsletter));
    // Both have the hashes by which the proof says that they differ.
    EXPECT_EQ(mixed.copyReadings.back().reading.hash, platform::sha256(newsletter));
    EXPECT_TRUE(mixed.copyReadings.back().reading.bodyHash && mixed.archivedReadings.at(0).reading.bodyHash);
    expectTrue(mixed);
}

TEST_F(ArchivedContent, ACopyThatCannotBeReadIsToldAndTriedAgain) {
    const std::string good = mailText("v@x", "one, whole");
    const std::string other = mailText("v@x", "two");
    const MessageList messages{store("v@x", "每周报告", {good, other})};
    const std::string path = messages[0].fileURL.path().str();
    for (const FileOperation operation : {FileOperation::open, FileOperation::read}) {
        std::filesystem::remove_all(root);
        FaultyFileLayer files;
        files.inject({.at = 1, .effect = Effect::fail, .operation = operation, .error = EIO, .path = path});
        const auto result = archive(messages, files);
        EXPECT_EQ(countsOf(result), (Counts{1, 0, 1}));
        EXPECT_EQ(result.failures.at(0).messageFileURL.path(), path);
        EXPECT_THAT(result.failures.at(0).reason, ::testing::HasSubstr("磁盘读写出错"));
        ASSERT_EQ(result.copyReadings.size(), 2U);
        EXPECT_EQ(result.copyReadings.back().path, path);
        EXPECT_EQ(result.copyReadings.back().reading.outcome, Outcome::unreadable);
        expectTrue(result);

        const auto next = archive(messages);
        EXPECT_EQ(next.failedCount, 0);
        EXPECT_TRUE(holds(good) && holds(other));
        EXPECT_EQ(ids(), (std::vector<std::string>{"mid:v@x", "mid:v@x#v1"}));
        expectTrue(next);
    }
}

TEST_F(ArchivedContent, AnIncompleteFileIsArchivedAndTold) {
    for (const char* file : {"250000\nSubject: x\n\ncut", "0\n<plist>", "4\n\0\0\0\0<plist>"}) {
        std::filesystem::remove_all(root);
        auto message = store("i@x");
        home.write("Library/Mail/V10/A/INBOX.mbox/Messages/cut.emlx",
                   file[0] == '4' ? std::string("4\n") + std::string(4, '\0') : file);
        message.fileURL = FileURL(home.at("Library/Mail/V10/A/INBOX.mbox/Messages/cut.emlx"));
        message.relatedMessageFileURLs.reset();
        const auto result = archive({message});
        EXPECT_EQ(countsOf(result), (Counts{1, 0, 1})) << file;
        EXPECT_THAT(reasons(result).at(0), ::testing::HasSubstr("不完整")) << file;
        EXPECT_EQ(result.copyReadings.at(0).reading.outcome, Outcome::incomplete) << file;
        expectTrue(result);
    }
}

// The later message of each pair has the identity of the first one, as far as an id goes.
TEST_F(ArchivedContent, OtherContentUnderAKnownIdIsKeptToo) {
    const auto withID = [&](const std::string& body) {
        return store("d@x", "每周报告", {mailText("d@x", body)});
    };
    const auto withoutID = [&](const std::string& body) {
        return store("", "每周报告", {"Subject: x\nTo: " + body + "\n\nhello"});
    };
    for (const bool inOneRun : {true, false}) {
        for (const auto& make : {std::function<MailMessageRecord(const std::string&)>(withID),
                                 std::function<MailMessageRecord(const std::string&)>(withoutID)}) {
            std::filesystem::remove_all(root);
            const MessageList messages{make("draft@x"), make("final version@x")};
            if (!inOneRun) archive({messages[0]});
            const auto result = archive(inOneRun ? messages : MessageList{messages[1]});
            EXPECT_EQ(countsOf(result), (Counts{inOneRun ? 2 : 1, 0, 0}));
            EXPECT_EQ(result.variantWarnings.size(), 1U);
            ASSERT_EQ(index().records.size(), 2U);
            EXPECT_EQ(index().records[1].id.str(), stableID(messages[0]) + "#v1");
            EXPECT_EQ(index().records[1].emlRelativePath, firstVariantPath);
            EXPECT_EQ(readWhole(at(firstVariantPath)),
                      readWhole(messages[1].fileURL.path().str()).substr(9, index().records[1].sizeBytes));
            expectTrue(result);
            const Tree before = treeOf(root);
            EXPECT_EQ(archive(messages).archivedCount, 0);
            EXPECT_EQ(treeOf(root), before);
        }
    }
}

TEST_F(ArchivedContent, AMessageIdThatLooksLikeAVariantIsAMessageOfItsOwn) {
    const MessageList messages{store("c@x#v1", "假"), store("c@x", "真"),
                               store("c@x", "真", {mailText("c@x", "another")})};
    const auto result = archive(messages);
    EXPECT_EQ(result.archivedCount, 3);
    EXPECT_EQ(ids(), (std::vector<std::string>{"mid:c@x#v1", "mid:c@x", "mid:c@x#v2"}));
    expectTrue(result);
}

TEST_F(ArchivedContent, CopiesThatDifferInTheirHeaderAreHeldByTheirBody) {
    const std::string larger = mailText("v", "one", "X-Mailbox: 2\n");
    const MessageList messages{store("v", "每周报告", {mailText("v", "one"), larger})};
    for (const std::int64_t written : {1, 0}) {
        const auto result = archive(messages);
        EXPECT_EQ(countsOf(result), (Counts{written, 1 - written, 0}));
        ASSERT_EQ(result.archivedReadings.size(), 1U);
        ASSERT_EQ(result.copyReadings.size(), 2U);
        for (const CopyReading& copy : result.copyReadings) {
            EXPECT_EQ(copy.reading.bodyHash, platform::sha256("one"));
        }
        EXPECT_EQ(result.archivedReadings[0].reading.bodyHash, platform::sha256("one"));
        EXPECT_EQ(ids(), std::vector<std::string>{"mid:v"});
        expectTrue(result);
    }
}

// With the originals still in Mail.
TEST_F(ArchivedContent, AFileThatIsGoneOrAlteredIsWrittenAgainAtItsPlace) {
    const MailMessageRecord message = store("a");
    const std::string mail = mailText("a", "body of a\n");
    std::string altered = mail;
    altered.back() = '!';

    struct {
        const char* what;
        std::string found; // empty: gone
        bool hasHash;
        bool isWritten;
    } const cases[] = {
        {"gone", "", true, true},
        {"gone, without a hash", "", false, true},
        {"altered", altered, true, true},
        {"another mail", "From: b@x\n\n", true, true},
        {"another mail, without a hash", "From: b@x\n\n", false, true},
        {"cut", mail.substr(0, 20), true, true},
        {"as it was", mail, true, false},
        {"as it was, without a hash", mail, false, false},
    };

    for (const auto& [what, found, hasHash, isWritten] : cases) {
        SCOPED_TRACE(what);
        std::filesystem::remove_all(root);
        archive({message});
        const auto records = index().records;
        if (!hasHash) dropHashes();
        std::filesystem::remove(at(firstPath));
        if (!found.empty()) home.write(std::string("Archive/") + firstPath, found);
        const auto result = archive({message});
        EXPECT_EQ(countsOf(result), (isWritten ? Counts{1, 0, 0} : Counts{0, 1, 0}));
        EXPECT_EQ(readWhole(at(firstPath)), mail);
        EXPECT_EQ(index().records.size(), 1U);
        EXPECT_EQ(index().records[0].emlRelativePath, records[0].emlRelativePath);
        EXPECT_EQ(holds(found), !found.empty() && found != mail.substr(0, 20)) << "moved aside";
        if (hasHash) expectTrue(result);
    }
}

TEST_F(ArchivedContent, NothingIsWrittenForAMessageWhoseFileCannotBeLookedAt) {
    const MessageList messages{store("a"), store("b", "别的")};
    archive({messages[0]});
    const std::string placeholder = "2020/工作/.2020-09-13 每周报告.eml.icloud";
    for (const FileOperation operation : {FileOperation::stat, FileOperation::open, FileOperation::read}) {
        FaultyFileLayer files;
        files.inject({.at = 1,
                      .effect = Effect::failFromHere,
                      .operation = operation,
                      .error = EIO,
                      .path = firstPath});
        const auto result = archive(messages, files);
        EXPECT_EQ(result.failedCount, 1);
        EXPECT_THAT(reasons(result).at(0), ::testing::HasSubstr("无法查看归档中已有的文件"));
        EXPECT_EQ(index().records.size(), 2U);
        expectTrue(result);
    }
    std::filesystem::rename(at(firstPath), at(placeholder));
    const auto result = archive(messages);
    EXPECT_EQ(result.failedCount, 1);
    EXPECT_FALSE(platform::fileExists(at(firstPath)));
}

// Two records of an index name one file: neither gets it taken away for the other.
TEST_F(ArchivedContent, APlaceThatTwoRecordsNameIsLeftAlone) {
    const MessageList messages{store("a"), store("b", "别的")};
    archive(messages);
    auto shared = index();
    shared.records[1].emlRelativePath = shared.records[0].emlRelativePath;
    home.write("Archive/archive-index.json", encodeArchiveIndex(shared));
    const auto result = archive(messages);
    EXPECT_EQ(result.archivedCount, 1);
    EXPECT_EQ(readWhole(at(firstPath)), mailText("a", "body of a\n"));
    EXPECT_EQ(ids(), (std::vector<std::string>{"mid:a", "mid:b", "mid:b#v1"}));
    EXPECT_TRUE(holds(mailText("b", "body of b\n")));
}

TEST_F(ArchivedContent, AMessageWithoutFilesIsInTheArchiveOnlyWhenItsFileIs) {
    const MessageList messages{store("a")};
    archive(messages);
    std::filesystem::remove(messages[0].fileURL.path().str());
    EXPECT_EQ(archive(messages).skippedAlreadyArchived, 1);
    std::filesystem::remove(at(firstPath));
    EXPECT_EQ(countsOf(archive(messages)), (Counts{0, 0, 1}));
}

} // namespace
} // namespace corvane::testing
