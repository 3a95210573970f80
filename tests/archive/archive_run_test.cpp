#include <filesystem>
#include <stop_token>
#include <thread>

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "archive/archive_error.h"
#include "archive/archive_fixture.h"
#include "platform/files/directory.h"
#include "records/archived/content_hash.h"
#include "support/mac_disk.h"

namespace corvane::testing {
namespace {

constexpr const char* firstPath = "2020/工作/2020-09-13 每周报告.eml";
constexpr const char* asidePath = "2020/工作/2020-09-13 每周报告（原有文件）.eml";

class ArchiveRun : public ArchiveFixture {
  protected:
    std::vector<std::string> statusTexts() const {
        std::vector<std::string> texts;
        for (const EmailArchiveProgress& report : reports) texts.push_back(report.statusText);
        return texts;
    }
};

TEST_F(ArchiveRun, WritesTheCountedBytesAndTheRecordOfAMessage) {
    MailMessageRecord message = store("id@x", "每周报告", {mailText("id@x", "body\r\n")});
    message.referencedMessageIdentifiers = {{"r@x"}};
    message.attachments = {{Uuid::random(), "b.pdf", "", {}, {}}, {Uuid::random(), "a.pdf", "", {}, {}}};
    message.accountIdentifier = "imap://A";
    const auto result = archive({message});
    const std::string text = mailText("id@x", "body\r\n");
    EXPECT_EQ(countsOf(result), (Counts{1, 0, 0}));
    EXPECT_EQ(result.archivedBytes, static_cast<std::int64_t>(text.size()));
    EXPECT_FALSE(result.hasIssues());
    EXPECT_EQ(result.indexURL.path(), at("archive-index.json"));
    const EmailArchiveIndex archived = index();
    ASSERT_EQ(archived.records.size(), 1U);
    const ArchivedEmailRecord expected{.id = "mid:id@x",
                                       .messageIdentifier = "id@x",
                                       .referencedMessageIdentifiers = {{"r@x"}},
                                       .subject = "每周报告",
                                       .sender = "a@example.com",
                                       .recipients = {},
                                       .ccRecipients = "你好 <c@example.com>",
                                       .date = message.date,
                                       .mailbox = "INBOX",
                                       .accountIdentifier = "imap://A",
                                       .accountName = "工作",
                                       .sizeBytes = static_cast<std::int64_t>(text.size()),
                                       .attachmentNames = {"b.pdf", "a.pdf"},
                                       .emlRelativePath = firstPath,
                                       .archivedAt = now,
                                       .sourceCopyCount = 1,
                                       .sourceCopiesIdentical = true,
                                       .contentHash = SharedText(contentHashText(platform::sha256(text)))};
    EXPECT_EQ(archived.records.front(), expected);
    EXPECT_EQ(archived.createdAt, now);
    EXPECT_EQ(treeOf(root).size(), 2U);
    EXPECT_EQ(readWhole(at(firstPath)), text);
    EXPECT_THAT(readWhole(at("archive-index.json")),
                ::testing::HasSubstr("\"emlRelativePath\": \"2020/工作/"));
}

TEST_F(ArchiveRun, WithNothingToDoStillWritesTheIndex) {
    archive({store("a")});
    const auto before = index();
    now += std::chrono::hours(1);
    const auto result = archive({});
    EXPECT_EQ(countsOf(result), (Counts{0, 0, 0}));
    EXPECT_EQ(statusTexts(), (std::vector<std::string>{"没有要归档的邮件", "归档完成"}));
    EXPECT_EQ(index().records, before.records);
    EXPECT_EQ(index().createdAt, before.createdAt);
    EXPECT_EQ(index().updatedAt, now);
}

TEST_F(ArchiveRun, ASecondRunChangesNoFile) {
    const MessageList messages{store("a"), store("b"), store("", "无标识"), store("a", "重复")};
    EXPECT_EQ(countsOf(archive(messages)), (Counts{3, 1, 0}));
    const Tree before = treeOf(root);
    FaultyFileLayer files;
    EXPECT_EQ(countsOf(archive(messages, files)), (Counts{0, 4, 0}));
    EXPECT_EQ(treeOf(root), before);
    EXPECT_EQ(files.operationCount(FileOperation::write), 1U); // the index
}

TEST_F(ArchiveRun, MessagesWithoutIdentifierAreOneWhenDateSenderAndSubjectAre) {
    EXPECT_EQ(countsOf(archive({store("", "x"), store("", "x"), store("", "y")})), (Counts{2, 1, 0}));
    EXPECT_EQ(index().records[0].id, "ck:1600000000|a@example.com|x");
}

TEST_F(ArchiveRun, KeepsEveryVariantOfAMessageWithDifferingCopies) {
    const std::string first = mailText("v", "one");
    const std::string larger = mailText("v", "one", "X-Mailbox: 2\n");
    const std::string other = mailText("v", "two!");
    const MessageList messages{store("v", "每周报告", {first, other, larger})};
    const auto result = archive(messages);
    EXPECT_EQ(countsOf(result), (Counts{2, 0, 0}));
    EXPECT_EQ(result.variantWarnings,
              std::vector<std::string>{"每周报告（2 个内容不一致的副本，已全部保留）"});
    EXPECT_EQ(readWhole(at("2020/工作/2020-09-13 每周报告（变体1）.eml")), larger);
    EXPECT_EQ(readWhole(at("2020/工作/2020-09-13 每周报告（变体2）.eml")), other);
    for (const ArchivedEmailRecord& record : index().records) {
        EXPECT_EQ(record.sourceCopyCount, 3);
        EXPECT_FALSE(record.sourceCopiesIdentical);
    }
    EXPECT_EQ(index().records[0].id, "mid:v#v1");
    EXPECT_EQ(index().records[1].id, "mid:v#v2");

    const Tree before = treeOf(root);
    EXPECT_EQ(countsOf(archive(messages)), (Counts{0, 2, 0}));
    EXPECT_EQ(treeOf(root), before);
}

TEST_F(ArchiveRun, CopiesWithOneBodyBecomeTheLargestOfThem) {
    const std::string larger = mailText("v", "one", "X-Mailbox: 2\n");
    const auto message = store("v", "每周报告", {mailText("v", "one"), larger});
    // A copy that is gone is passed over; one that can't be cut or isn't a file is told.
    std::filesystem::remove(message.allMessageFileURLs()[0].path().str());
    auto withBroken = message;
    withBroken.relatedMessageFileURLs->push_back(FileURL(home.write("broken.emlx", "no count")));
    withBroken.relatedMessageFileURLs->push_back(FileURL(home.makeFolder("folder.emlx")));
    ASSERT_EQ(::mkfifo(home.at("fifo.emlx").c_str(), 0644), 0);
    withBroken.relatedMessageFileURLs->push_back(FileURL(home.at("fifo.emlx")));
    withBroken.relatedMessageFileURLs->push_back(FileURL(home.write("c.emlx", emlx(mailText("v", "one")))));
    const auto result = archive({withBroken});
    EXPECT_EQ(countsOf(result), (Counts{1, 0, 1}));
    std::vector<std::string> paths;
    for (const EmailArchiveFailure& failure : result.failures)
        paths.push_back(failure.messageFileURL.path().str());
    EXPECT_EQ(paths, (std::vector{home.at("broken.emlx"), home.at("folder.emlx"), home.at("fifo.emlx")}));
    EXPECT_EQ(readWhole(at(firstPath)), larger);
    EXPECT_EQ(index().records[0].sourceCopyCount, 2);
    EXPECT_TRUE(index().records[0].sourceCopiesIdentical);
}

TEST_F(ArchiveRun, TellsWhyAMessageCouldNotBeRead) {
    auto notDownloaded = store("a");
    std::filesystem::remove(notDownloaded.fileURL.path().str());
    auto gone = store("b");
    gone.fileURL = FileURL(home.at("elsewhere/1.emlx"));
    gone.relatedMessageFileURLs.reset();
    auto broken = store("c");
    home.write("broken.emlx", "-5\nabcdef");
    broken.fileURL = FileURL(home.at("broken.emlx"));
    broken.relatedMessageFileURLs.reset();
    const auto result = archive({notDownloaded, gone, broken, store("d")});
    EXPECT_EQ(countsOf(result), (Counts{1, 0, 3}));
    EXPECT_EQ(result.failures[0].reason,
              "邮件未下载到本地。请在 Mail->设置->账户，将「下载附件」改为「全部」并同步后重试。");
    EXPECT_EQ(result.failures[1].reason, "邮件文件不存在，可能已被 Mail 重新索引，请重新扫描后再试。");
    EXPECT_EQ(result.failures[2].reason, "无法读取邮件内容，请重新扫描后再试。");
    EXPECT_EQ(result.failures[2].messageFileURL, broken.fileURL);
    EXPECT_TRUE(result.hasIssues());
    EXPECT_EQ(index().records.size(), 1U);
}

TEST_F(ArchiveRun, ReportsAtMostOnceASecondAndAlwaysTheEnds) {
    using namespace std::chrono_literals;
    auto timed = options();
    std::vector<std::chrono::milliseconds> moments{0ms, 400ms, 999ms, 1000ms, 1999ms, 5000ms};
    std::size_t next = 0;
    timed.clock = [&] { return std::chrono::steady_clock::time_point(100h + moments.at(next++)); };
    MessageList messages;
    for (std::size_t i = 0; i < moments.size(); ++i)
        messages.push_back(store(fmt::format("m{}", i), fmt::format("s{}", i)));
    MailEmailArchiver(platform::posixFileLayer(), timed).archive(messages, root, [this](const auto& report) {
        reports.push_back(report);
    });
    const std::vector<EmailArchiveProgress> expected{{0, 6, {}, "准备归档 6 封邮件..."},
                                                     {0, 6, "s0", "正在归档：s0"},
                                                     {3, 6, "s3", "正在归档：s3"},
                                                     {5, 6, "s5", "正在归档：s5"},
                                                     {6, 6, {}, "归档完成"}};
    EXPECT_EQ(reports, expected);
}

TEST_F(ArchiveRun, ACancelFinishesTheMessageAtWorkAndSavesWhatWasDone) {
    std::stop_source stop;
    FaultyFileLayer files;
    files.observe([&](const RecordedOperation& operation) {
        if (operation.operation == FileOperation::sync &&
            operation.path.find("三（变体1）") != std::string::npos) {
            stop.request_stop();
        }
    });
    const MessageList messages{store("a", "一"), store("b", "二"),
                               store("c", "三", {mailText("c", "1"), mailText("c", "22")}), store("d", "四")};
    std::vector<EmailArchiveProgress> seen;
    const auto result =
        MailEmailArchiver(files, options())
            .archive(messages, root, [&](const auto& report) { seen.push_back(report); }, stop.get_token());
    EXPECT_TRUE(result.wasCancelled);
    EXPECT_EQ(countsOf(result), (Counts{4, 0, 0}));
    EXPECT_EQ(index().records.size(), 4U);
    EXPECT_EQ(seen.back(), (EmailArchiveProgress{4, 4, {}, "归档完成"}));
    EXPECT_EQ(countsOf(archive(messages)), (Counts{1, 4, 0}));
}

// What an earlier, killed run or somebody else has left at the place of a message.
TEST_F(ArchiveRun, TakesOrReplacesOrMovesAsideWhatIsAtThePlace) {
    const MailMessageRecord message = store("id@x");
    const std::string text = mailText("id@x", "body of id@x\n");
    std::string changed = text;
    changed.back() = '!';

    struct {
        const char* what;
        std::string existing;
        Counts counts;
        bool isKept;
    } const cases[] = {
        {"complete", text, {0, 1, 0}, false},
        {"cut short", text.substr(0, text.size() / 2), {1, 0, 0}, false},
        {"empty", "", {1, 0, 0}, false},
        {"right size, never flushed", std::string(text.size(), '\0'), {1, 0, 0}, false},
        {"right size, other content", changed, {1, 0, 0}, true},
        {"another mail, shorter", "From: b@example.com\n\n", {1, 0, 0}, true},
        {"another mail, longer", text + "more", {1, 0, 0}, true},
    };

    for (const auto& [what, existing, counts, isKept] : cases) {
        std::filesystem::remove_all(root);
        home.write(std::string("Archive/") + firstPath, existing);
        EXPECT_EQ(countsOf(archive({message})), counts) << what;
        Tree expected{{firstPath, text}, {"archive-index.json", readWhole(at("archive-index.json"))}};
        if (isKept) expected[asidePath] = existing;
        EXPECT_EQ(treeOf(root), expected) << what;
        EXPECT_EQ(index().records.at(0).emlRelativePath, firstPath) << what;
    }
}

TEST_F(ArchiveRun, NeverOverwritesAnArchivedMailWhoseIndexWasLost) {
    archive({store("a")});
    const std::string archived = readWhole(at(firstPath));
    for (const char* id : {"b", "c"}) {
        std::filesystem::remove(at("archive-index.json"));
        EXPECT_EQ(countsOf(archive({store(id)})), (Counts{1, 0, 0}));
    }
    EXPECT_EQ(readWhole(at(asidePath)), archived);
    EXPECT_EQ(readWhole(at("2020/工作/2020-09-13 每周报告（原有文件）-2.eml")), mailText("b", "body of b\n"));
    EXPECT_EQ(readWhole(at(firstPath)), mailText("c", "body of c\n"));
}

TEST_F(ArchiveRun, AFileIsFlushedBeforeItCountsAsInPlace) {
    home.write(std::string("Archive/") + firstPath, mailText("a", "body of a\n"));
    FaultyFileLayer files;
    EXPECT_EQ(countsOf(archive({store("a")}, files)), (Counts{0, 1, 0}));
    bool wasFlushed = false;
    for (const auto& operation : files.record()) {
        wasFlushed =
            wasFlushed || (operation.operation == FileOperation::sync && operation.path == at(firstPath));
    }
    EXPECT_TRUE(wasFlushed);
}

TEST_F(ArchiveRun, MailsStayApartAndAreFoundAgainOnADiskOfAMac) {
    testing::MacDisk files;
    MessageList messages{store("a", "Re: hello"), store("b", "RE: hello"), store("c", "re: hello"),
                         store("d", "Ação"),      store("e", "AÇÃO"),      store("f", "한글")};
    messages[3].accountName = messages[4].accountName = "Café";
    messages[5].accountName = "Cafe\xcc\x81"; // the accent apart
    EXPECT_EQ(countsOf(archive(messages, files)), (Counts{6, 0, 0}));
    const Tree before = treeOf(root);
    EXPECT_EQ(before.size(), 7U);
    EXPECT_EQ(countsOf(archive(messages, files)), (Counts{0, 6, 0}));
    std::filesystem::remove(at("archive-index.json"));
    EXPECT_EQ(countsOf(archive(messages, files)), (Counts{0, 6, 0}));
    EXPECT_EQ(treeOf(root), before);
}

TEST_F(ArchiveRun, StartsAnewOverABrokenIndexAndKeepsItAside) {
    archive({store("a", "旧邮件")});
    const std::string good = readWhole(at("archive-index.json"));
    std::vector<std::string> kept;
    for (const std::string& broken : {good.substr(0, good.size() - 3), std::string(), std::string("[]")}) {
        home.write("Archive/archive-index.json", broken);
        const auto result = archive({store("b")});
        EXPECT_EQ(result.failedCount, 0);
        ASSERT_EQ(result.archiveWarnings.size(), 1U);
        EXPECT_TRUE(result.hasIssues());
        ASSERT_EQ(index().records.size(), 1U);
        EXPECT_EQ(index().records[0].messageIdentifier, "b");
        kept.push_back(broken);
        const std::string number = kept.size() == 1 ? "" : fmt::format("-{}", kept.size());
        const std::string name = fmt::format(".archive-index-damaged-20231114T221320Z{}.json", number);
        EXPECT_THAT(result.archiveWarnings[0], ::testing::HasSubstr(name));
        EXPECT_EQ(readWhole(at(name)), broken);
        EXPECT_TRUE(platform::fileExists(at("2020/工作/2020-09-13 旧邮件.eml")));
    }
}

TEST_F(ArchiveRun, PathsInAnIndexAreOnlyAvoided) {
    archive({store("a")});
    auto hostile = index();
    const std::string victim = home.write("victim.eml", "precious");
    for (const std::string& path :
         {victim, std::string("../victim.eml"), std::string(), std::string("2020/工作/..")}) {
        auto record = hostile.records[0];
        record.id = "mid:" + path;
        record.emlRelativePath = path;
        hostile.records.push_back(record);
    }
    home.write("Archive/archive-index.json", encodeArchiveIndex(hostile));
    EXPECT_EQ(countsOf(archive({store("b")})), (Counts{1, 0, 0}));
    EXPECT_EQ(readWhole(victim), "precious");
    EXPECT_EQ(index().records.size(), 6U);
    EXPECT_EQ(index().records.back().emlRelativePath, "2020/工作/2020-09-13 每周报告-2.eml");
}

TEST_F(ArchiveRun, NeverLeavesTheRootThroughAPlantedLink) {
    home.makeFolder("outside/工作");
    const std::string victim = home.write("victim", "precious");

    struct {
        const char* what;
        std::string link;
        std::string target;
    } const cases[] = {
        {"year", "2020", home.at("outside")},
        {"account", "2020/工作", home.at("outside")},
        {"file", firstPath, victim},
        {"dangling file", firstPath, home.at("outside/new")},
        {"dangling folder", "2020/工作", home.at("outside/none")},
    };

    for (const auto& [what, link, target] : cases) {
        std::filesystem::remove_all(root);
        std::filesystem::create_directories(std::filesystem::path(at(link)).parent_path());
        ASSERT_EQ(::symlink(target.c_str(), at(link).c_str()), 0);
        const auto result = archive({store("a")});
        EXPECT_EQ(countsOf(result), (Counts{0, 0, 1})) << what;
        EXPECT_EQ(result.failures.at(0).reason, "写入文件失败") << what;
        EXPECT_EQ(treeOf(home.at("outside")), Tree{}) << what;
        EXPECT_EQ(readWhole(victim), "precious") << what;
    }
    // A root that is itself a link is the user's choice, and so is one within the archive.
    std::filesystem::remove_all(root);
    home.makeFolder("disk/years");
    ASSERT_EQ(::symlink(home.at("disk").c_str(), root.c_str()), 0);
    ASSERT_EQ(::symlink("years", at("2020").c_str()), 0);
    EXPECT_EQ(countsOf(archive({store("a")})), (Counts{1, 0, 0}));
}

TEST_F(ArchiveRun, ARootThatCannotBeMadeOrAnIndexThatCannotBeSavedEndsTheRun) {
    home.write("file", "x");
    EXPECT_EQ(errorOf([&] { MailEmailArchiver().archive({store("a")}, home.at("file/Archive"), {}); }),
              "无法创建归档文件夹“" + home.at("file/Archive") + "”：同名文件占用了该位置");
    archive({store("a", "旧邮件")});
    const Tree before = treeOf(root);
    FaultyFileLayer files;
    files.inject({.at = 1, .effect = Effect::fail, .operation = FileOperation::rename, .error = ENOSPC});
    EXPECT_EQ(errorOf([&] { archive({store("b")}, files); }),
              "无法保存归档索引“" + at("archive-index.json") + "”：磁盘空间不足");
    Tree expected = before;
    expected[firstPath] = mailText("b", "body of b\n");
    EXPECT_EQ(treeOf(root), expected);
}

TEST_F(ArchiveRun, ASecondRunIntoTheSameArchiveIsRefusedAndTheFirstKeepsItsIndex) {
    FaultyFileLayer files;
    files.inject({.at = 1, .effect = Effect::hang, .operation = FileOperation::write});
    std::thread first([&] { MailEmailArchiver(files, options()).archive({store("a", "一")}, root, {}); });
    files.waitUntilHanging();
    const MessageList others{store("b", "二")};
    const std::string sameFolder = root + "/.";
    const std::string refusal = errorOf([&] { MailEmailArchiver().archive(others, sameFolder, {}); });
    const bool leftNothing = treeOf(root).size() <= 1;
    MailEmailArchiver().archive(others, home.at("Elsewhere"), {});
    files.release();
    first.join();
    EXPECT_TRUE(refusal.ends_with("：另一个 Corvane 正在向这里归档，请等它完成后再试")) << refusal;
    EXPECT_TRUE(leftNothing);
    EXPECT_EQ(index().records.size(), 1U);
    EXPECT_EQ(countsOf(archive(others)), (Counts{1, 0, 0})) << "the lock goes with its run";
    EXPECT_EQ(index().records.size(), 2U);
}

TEST_F(ArchiveRun, ReadsMailsStoreWithoutChangingIt) {
    const MessageList messages{store("a"), store("b", "x", {mailText("b", "1"), mailText("b", "22")})};
    const Tree before = treeOf(home.at("Library"));
    std::filesystem::permissions(messages[0].fileURL.path().str(), std::filesystem::perms(0400));
    archive(messages);
    EXPECT_EQ(treeOf(home.at("Library")), before);
}

} // namespace
} // namespace corvane::testing
