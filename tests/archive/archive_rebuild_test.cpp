#include "archive/checks/archive_rebuild.h"

#include <chrono>
#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "archive/archive_error.h"
#include "archive/archive_fixture.h"
#include "archive/checks/archive_verification.h"
#include "archive/destination/archive_destination.h"
#include "archive/header_summary.h"
#include "platform/files/sha256.h"
#include "records/archived/content_hash.h"

namespace corvane::testing {
namespace {

namespace fs = std::filesystem;

std::string fullMail(const std::string& identifier, const std::string& subject, const std::string& body) {
    return (identifier.empty() ? "" : "Message-ID: <" + identifier + ">\r\n") +
           "From: \"Li, =?utf-8?Q?=E4=BD=A0?= =?utf-8?Q?_=E5=A5=BD?=\" <li_a@example.com>\r\n"
           "To: b@example.com\r\nSubject: " +
           subject + "\r\nDate: Sun, 13 Sep 2020 14:26:40 +0200 (CEST)\r\n\r\n" + body;
}

class RebuildOfAnArchive : public ArchiveFixture {
  protected:
    MailMessageRecord full(const std::string& identifier, const std::string& subject,
                           const std::vector<std::string>& bodies, const std::string& written = {}) {
        std::vector<std::string> copies;
        for (const std::string& body : bodies)
            copies.push_back(fullMail(identifier, written.empty() ? subject : written, body));
        MailMessageRecord message = store(identifier, subject, copies);
        message.sender = "Li, 你 好 <li_a@example.com>";
        message.recipients = "b@example.com";
        return message;
    }

    void SetUp() override {
        archive({full("a", "一", {"body of a"}),
                 full("", "年 度 报告", {"no id"}, "=?gbk?B?xOogtsggsai45g==?="),
                 full("v", "二", {"one", "other"}), full("x#v1", "三", {"odd id"})});
        original = index();
        first = original.records[0].emlRelativePath.str();
    }

    [[nodiscard]] std::map<std::string, std::string> failuresOf(const ArchiveRebuild& rebuild) const {
        std::map<std::string, std::string> failures;
        for (const auto& [path, reason] : rebuild.failures) failures[path] = reason;
        return failures;
    }

    EmailArchiveIndex original;
    std::string first;
};

TEST_F(RebuildOfAnArchive, OfWhichOnlyTheMailIsLeftGivesTheSameIdsAndProvesTheSame) {
    fs::remove(at("archive-index.json"));
    const auto files = treeOf(root);
    const ArchiveRebuild rebuilt = rebuildArchive(root);
    EXPECT_EQ(rebuilt.adopted, 5);
    EXPECT_EQ(rebuilt.records, 5);
    EXPECT_TRUE(rebuilt.failures.empty());
    std::map<std::string, ArchivedEmailRecord> byPath;
    for (const ArchivedEmailRecord& record : index().records) byPath[record.emlRelativePath.str()] = record;
    for (const ArchivedEmailRecord& record : original.records) {
        const ArchivedEmailRecord& found = byPath[record.emlRelativePath.str()];
        EXPECT_EQ(found.id, record.id);
        EXPECT_EQ(found.messageIdentifier, record.messageIdentifier);
        EXPECT_EQ(found.subject, record.subject);
        EXPECT_EQ(found.sender, record.sender);
        EXPECT_EQ(found.recipients, record.recipients);
        EXPECT_EQ(found.date, record.date);
        EXPECT_EQ(found.accountName, record.accountName);
        EXPECT_EQ(found.sizeBytes, record.sizeBytes);
        EXPECT_EQ(found.sourceCopiesIdentical, record.sourceCopiesIdentical);
        EXPECT_EQ(found.contentHash,
                  contentHashText(platform::sha256(readWhole(at(record.emlRelativePath)))));
    }
    auto withoutIndex = treeOf(root);
    withoutIndex.erase("archive-index.json");
    EXPECT_EQ(withoutIndex, files);
    EXPECT_EQ(rebuilt.readings.size(), 5U);
    EXPECT_TRUE(verifyArchive(root).isClean());
    EXPECT_EQ(rebuildArchive(root).adopted, 0);
}

TEST_F(RebuildOfAnArchive, KeepsADamagedIndexAndAsksForOneThatCannotBeLookedAt) {
    home.write("Archive/archive-index.json", "{\"records\":[");
    RebuildOptions options{.isDryRun = true};
    const auto before = treeOf(root);
    EXPECT_EQ(rebuildArchive(root, options).adopted, 5);
    EXPECT_EQ(treeOf(root), before);
    options = {.now = [this] { return now; }};
    EXPECT_EQ(rebuildArchive(root, options).records, 5);
    EXPECT_EQ(readWhole(at(".archive-index-damaged-20231114T221320Z.json")), "{\"records\":[");

    fs::remove(at("archive-index.json"));
    home.write("Archive/.archive-index.json.icloud", "");
    EXPECT_THROW(rebuildArchive(root), ArchiveAccessError);
    fs::remove(at(".archive-index.json.icloud"));
    fs::create_directory(at("archive-index.json"));
    EXPECT_THROW(rebuildArchive(root), ArchiveAccessError);
    EXPECT_THROW(rebuildArchive(home.at("nothing")), ArchiveAccessError);

    EXPECT_EQ(rebuildNeed(root), std::nullopt) << "nobody can look";
    fs::remove(at("archive-index.json"));
    home.write("Archive/other.eml", "x");
    EXPECT_EQ(rebuildNeed(root), (RebuildNeed{5, false}));
    home.write("Archive/archive-index.json", "{");
    EXPECT_EQ(rebuildNeed(root), (RebuildNeed{5, true}));
    home.write("Archive/archive-index.json", encodeArchiveIndex(original));
    EXPECT_EQ(rebuildNeed(root), std::nullopt);

    const std::string empty = home.makeFolder("empty");
    EXPECT_EQ(rebuildArchive(empty).records, 0);
    EXPECT_TRUE(fs::is_empty(empty));
}

TEST_F(RebuildOfAnArchive, TakesHostileFilesForFailures) {
    const std::string outside = home.write("outside.eml", fullMail("out", "外", "x"));
    ASSERT_EQ(::symlink(outside.c_str(), at("link.eml").c_str()), 0);
    ASSERT_EQ(::symlink(home.path().c_str(), at("folder").c_str()), 0);
    ASSERT_EQ(::mkfifo(at("pipe.eml").c_str(), 0600), 0);
    home.write("Archive/huge.eml", "From: x\n\n");
    fs::resize_file(at("huge.eml"), std::uintmax_t{5} << 30);
    home.write("Archive/empty.eml", "");
    home.write("Archive/zeros.eml", std::string(1000, '\0'));
    home.write("Archive/text.eml", "no header: at all\n\n");
    home.write("Archive/.cloud.eml.icloud", "");
    home.write("Archive/._first.eml", "x");
    home.write("Archive/broken.eml", fullMail("broken", "坏", "x"));
    FaultyFileLayer files;
    files.inject({.at = 2, .operation = FileOperation::open}); // behind that of the index
    EXPECT_EQ(failuresOf(rebuildArchive(root, {.isDryRun = true}, {}, files)),
              (std::map<std::string, std::string>{{"link.eml", "不是普通文件"},
                                                  {"pipe.eml", "不是普通文件"},
                                                  {"huge.eml", "文件过大，不是邮件"},
                                                  {"empty.eml", "没有邮件头，不是邮件"},
                                                  {"zeros.eml", "没有邮件头，不是邮件"},
                                                  {"text.eml", "没有邮件头，不是邮件"},
                                                  {"cloud.eml", "文件只在云端，请先下载到本机"},
                                                  {"broken.eml", "无法读取文件"}}));
}

TEST_F(RebuildOfAnArchive, ListsWhatIsInTheMailAndCountsThoseNobodyCouldLookThrough) {
    const std::string parts = "Content-Type: multipart/mixed; boundary=b\r\nMIME-Version: 1.0\r\n";
    for (const char* name : {"good", "lost"})
        home.write(std::string("Archive/") + name + ".eml",
                   parts + fullMail(name, name, "--b\r\nContent-Disposition: attachment"));
    RebuildOptions options;
    options.attachmentNames = [](const std::string& path,
                                 const std::stop_token&) -> std::optional<std::vector<SharedText>> {
        if (path.ends_with("lost.eml")) return std::nullopt;
        return std::vector<SharedText>{"一.pdf"};
    };
    EXPECT_EQ(rebuildArchive(root, options).withUnknownAttachments, 1);
    const auto records = index().records;
    ASSERT_EQ(records.size(), 7U);
    EXPECT_EQ(records[5].attachmentNames, std::vector<SharedText>{"一.pdf"});
    EXPECT_TRUE(records[6].attachmentNames.empty());
}

TEST_F(RebuildOfAnArchive, AddsVariantsAndTellsOfCopies) {
    const std::string second = original.records[1].emlRelativePath.str();
    home.write("Archive/copy of a.eml", readWhole(at(first)));
    home.write("Archive/2021/家/a later.eml", fullMail("a", "一", "other body"));
    fs::rename(at(second), at("2020/renamed.eml"));
    const ArchiveRebuild rebuilt = rebuildArchive(root);
    EXPECT_EQ(rebuilt.adopted, 2);
    EXPECT_EQ(failuresOf(rebuilt), (std::map<std::string, std::string>{
                                       {"copy of a.eml", "与“" + first + "”内容相同，没有重复收入"}}));
    const EmailArchiveIndex changed = index();
    EXPECT_EQ(changed.createdAt, original.createdAt);
    ASSERT_EQ(changed.records.size(), 6U);
    EXPECT_EQ(changed.records[0], original.records[0]);
    EXPECT_EQ(changed.records[1].id, original.records[1].id);
    EXPECT_EQ(changed.records[5].id, "mid:a#v1");
    EXPECT_EQ(changed.records[5].accountName, "家");
}

TEST_F(RebuildOfAnArchive, ChangesNothingUnderAForeignLockOrAfterAStop) {
    fs::remove(at("archive-index.json"));
    {
        archive::ArchiveDestination other(platform::posixFileLayer(), root, platform::placeLimit);
        other.lock();
        EXPECT_THROW(rebuildArchive(root), ArchiveAccessError);
    }
    std::stop_source stop;
    RebuildOptions options;
    options.progress = [&](std::size_t read, std::size_t all) {
        EXPECT_EQ(all, 5U);
        if (read == 2) stop.request_stop();
    };
    EXPECT_TRUE(rebuildArchive(root, options, stop.get_token()).wasCancelled);
    EXPECT_FALSE(fs::exists(at("archive-index.json")));
}

TEST(HeaderSummary, DecodesAsMailDoes) {
    using archive::decodedWords;
    using archive::shownAddresses;
    const std::pair<std::string, const char*> words[] = {
        {"plain a_b", "plain a_b"},
        {"=?utf-8?Q?a_b=20c?= d_e", "a b c d_e"},
        {"=?UTF-8?B?5L2g?=\t=?utf-8*zh?b?5aW9?= x", "你好 x"},
        {"=?utf-8?B?5L0=?= =?utf-8?B?oA==?=", "你"},
        {"=?utf-8?B?5L2g5aW9?=?= =?utf-8?X?a?= =?utf-8?B?*?=", "你好?= =?utf-8?X?a?= =?utf-8?B?*?="},
        {"=?utf-8?B?YWI?=", "ab"},
        {"=?big5?B?p0E=?= =?iso-2022-jp?B?GyRCRnxLXBsoQg==?= =?../x?Q?a?=", "你日本a"},
        {"=?a?Q?", "=?a?Q?"},
    };
    for (const auto& [value, expected] : words) EXPECT_EQ(decodedWords(value), expected);
    const std::pair<const char*, const char*> addresses[] = {
        {"a@b", "a@b"},
        {"<a@b>", "a@b"},
        {"\"A, \\\"B\\\"\" <a@b>, =?utf-8?Q?=E4=BD=A0?= <c_d@e>,", "A, \"B\" <a@b>, 你 <c_d@e>"},
        {"a@b, \"c\\", "a@b, \"c\\"},
        {"", ""},
    };
    for (const auto& [value, expected] : addresses) EXPECT_EQ(shownAddresses(value), expected);
    EXPECT_EQ(archive::headerSummary("Subject: a\rFrom: b\r\rTo: c")->recipients, "");
    EXPECT_EQ(archive::headerSummary("Subject: \xC4\xEA\n\n")->subject, "年");
    EXPECT_EQ(archive::headerSummary("Date: x\n\n")->sender, "发件人未知");
}

} // namespace
} // namespace corvane::testing
