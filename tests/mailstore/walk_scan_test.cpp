#include <chrono>
#include <filesystem>
#include <utility>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "mailstore/sample_mail_store.h"
#include "mailstore/scan/attachment_resolution.h"
#include "mailstore/scan/mail_data_scanner.h"
#include "mime/attachment_names.h"
#include "mime/emlx.h"

namespace corvane::mailstore {
namespace {

namespace fs = std::filesystem;

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::recordsOf;
using testing::startOf2024;
using testing::subjectsOf;
using Batch = RecordBatch;

constexpr const char* attachedFields = "Content-Type: multipart/mixed; boundary=b";
constexpr const char* attachedBody =
    "--b\n\ntext\n--b\nContent-Disposition: attachment; filename=\"a.pdf\"\n\nQUJD\n--b--\n";

std::string emlx(std::string_view fields, std::string_view body = "") {
    const std::string message = fmt::format("{}\n\n{}", fields, body);
    return fmt::format("{}\n{}<?xml version=\"1.0\"?><plist/>", message.size(), message);
}

std::string attachedMail(std::string_view subject) {
    return emlx(fmt::format("Subject: {}\n{}", subject, attachedFields), attachedBody);
}

// A store whose folders are there and whose index isn't.
struct FolderStore : testing::ScannedStore {
    FolderStore() {
        close();
        fs::remove(indexPath());
    }

    [[nodiscard]] std::string at(const std::string& below) const { return mailPath(inbox + below); }

    void add(const std::string& below, std::string_view content) const {
        home.write("Library/Mail/V10/" + inbox + below, content);
    }

    // Lines of Python that answer each request.
    void useWorker(const std::string& handle) {
        platform.resourceFolders = {home.at("resources")};
        platform.runtimes = {"/usr/bin/python3"};
        home.write("resources/mail_worker.py",
                   "import json, os, sys\ndef out(text): os.write(1, text.encode() + b'\\n')\nfor line in "
                   "sys.stdin:\n    "
                   "request = json.loads(line)\n    open(" +
                       fmt::format("'{}', 'a').write(request['command'] + ' ')\n    ", home.at("asked")) +
                       handle);
    }

    [[nodiscard]] std::vector<Batch> batches() const { return scan(scanner()); }

    [[nodiscard]] std::vector<std::string> subjects() const { return testing::subjectsOf(batches()); }
};

std::vector<std::string> described(const std::vector<MailAttachmentRecord>& attachments) {
    std::vector<std::string> all;
    all.reserve(attachments.size());
    for (const auto& each : attachments)
        all.push_back(fmt::format("{} {} {}", each.fileName, each.estimatedSize.value_or(-1), each.mimeType));
    return all;
}

TEST(WalkScan, RecordsHoldWhatTheirFilesTell) {
    FolderStore store;
    store.add(
        "1/Messages/1001.emlx",
        emlx(std::string("Subject: =?utf-8?B?5L2g5aW9?=\nFrom: A_B <a@example.org>\nTo: b@example.org,\n "
                         "c@example.org\nDate: Mon, 1 Jan 2024 10:00:00 +0800 (CST)\nMessage-ID: <One@Host>\n"
                         "In-Reply-To: <Two@Host> <Three@Host>\n") +
                 attachedFields,
             attachedBody));
    store.add("1/Messages/1002.partial.emlx", emlx(attachedFields, attachedBody));
    store.add("1/Messages/1003.emlx", emlx("Subject: nothing attached", "see name"));
    store.home.write(fmt::format("Library/Mail/V10/{}/INBOX.mbox/Info.plist", testing::firstAccount),
                     "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>MailboxHasBeenImported</key>"
                     "<true/></dict></plist>");
    const auto batches = store.batches();
    EXPECT_EQ(batches.size(), 2U);
    EXPECT_EQ(batches.back().visitedCount, 3);
    EXPECT_THAT(batches.back().timingLog, HasSubstr("｜已访问 3｜已纳入 3｜含附件 2｜"));
    const auto records = recordsOf(batches);
    ASSERT_EQ(records.size(), 2U);
    const MailMessageRecord& full = records[0];
    EXPECT_EQ(full.subject, "你好");
    EXPECT_EQ(full.sender, "A_B <a@example.org>");
    EXPECT_EQ(full.recipients, "b@example.org, c@example.org");
    EXPECT_EQ(full.date, Date(std::chrono::seconds(startOf2024 + 7200)));
    EXPECT_EQ(full.messageIdentifier, SharedText("one@host"));
    EXPECT_THAT(full.referencedMessageIdentifiers.value(), ElementsAre("two@host"));
    EXPECT_EQ(full.mailbox, "1");
    EXPECT_EQ(full.accountIdentifier, SharedText(FolderStore::account));
    EXPECT_EQ(full.accountName, SharedText("me@example.org"));
    EXPECT_EQ(full.isImportedMailbox, true);
    EXPECT_EQ(full.id, full.fileURL.path());
    EXPECT_EQ(full.messageSize, static_cast<std::int64_t>(fs::file_size(full.id.str())));
    EXPECT_EQ(full.preview, "正在加载正文预览...");
    EXPECT_THAT(described(full.attachments), ElementsAre("a.pdf -1 PDF 文档"));
    EXPECT_EQ(records[1].subject, "无主题");
    EXPECT_EQ(records[1].sender, "发件人未知");
    EXPECT_EQ(records[1].date, std::nullopt);
}

TEST(WalkScan, GoesOnlyWhereMessagesAre) {
    FolderStore store;
    store.add("Messages/1.EMLX", attachedMail("first"));
    store.add("Messages/2.eml", attachedMail("no"));
    store.add("Attachments/9/1/3.emlx", attachedMail("no"));
    store.add(".hidden/4.emlx", attachedMail("no"));
    store.add("Messages/.5.emlx", attachedMail("no"));
    store.home.write("elsewhere/6.emlx", attachedMail("no"));
    store.home.write("Library/Mail/V9/7.emlx", attachedMail("older store"));
    fs::create_directory_symlink(store.home.at("elsewhere"), store.at("link"));
    fs::create_directory_symlink(store.home.at("Library"), store.at("loop"));
    fs::create_directory(store.at("8.emlx"));
    store.add("8.emlx/9.emlx", attachedMail("inside"));
    store.add("Messages/closed.emlx", attachedMail("no"));
    fs::permissions(store.at("Messages/closed.emlx"), fs::perms::none);
    ASSERT_EQ(::mkfifo(store.at("Messages/fifo.emlx").c_str(), 0600), 0);
    auto expected = std::vector<std::string>{"inside", "first", "older store"};
    if (::geteuid() == 0) expected = {"inside", "first", "no", "older store"};
    EXPECT_EQ(store.subjects(), expected);
}

TEST(WalkScan, ComesWithoutAnIndexOrAShell) {
    testing::ScannedStore store;
    store.add({.rowID = 1, .subject = "by the index"});
    store.home.write("Library/Mail/V10/Other/Messages/2.emlx", attachedMail("by its file"));
    EXPECT_THAT(subjectsOf(store.scan()), ElementsAre("by the index"));
    store.platform.shell = store.home.at("missing");
    EXPECT_THAT(subjectsOf(store.scan()), ElementsAre("by its file"));
    store.platform.shell = "/usr/bin/sqlite3";
    fs::remove(store.indexPath());
    EXPECT_THAT(subjectsOf(store.scan()), ElementsAre("by its file"));
    fs::remove_all(store.root);
    EXPECT_THROW((void)store.scan(), mime::MessageFileError);
}

TEST(WalkScan, YearsAreThoseOfTheZone) {
    const testing::TimeZoneGuard zone("Asia/Shanghai");
    FolderStore store;
    const auto dated = [&](const char* name, const char* date) {
        store.add(name,
                  emlx(fmt::format("Subject: {}\nDate: {}\n{}", date, date, attachedFields), attachedBody));
    };
    dated("1.emlx", "Sun, 31 Dec 2023 15:59:59 +0000");
    dated("2.emlx", "Sun, 31 Dec 2023 16:00:00 +0000");
    dated("3.emlx", "no date");
    MailDataScanner scanner = store.scanner();
    scanner.maximumYear = 2023;
    const auto batches = FolderStore::scan(scanner);
    EXPECT_THAT(batches.back().timingLog, HasSubstr("年份跳过 1"));
    EXPECT_THAT(subjectsOf(batches), ElementsAre("Sun, 31 Dec 2023 15:59:59 +0000", "no date"));
}

TEST(WalkScan, ProgressComesWithoutRecordsToo) {
    const FolderStore store;
    for (int i = 1; i <= 230; ++i)
        store.add(fmt::format("Messages/{}.emlx", i), i > 140 ? attachedMail("x") : emlx("Subject: x"));
    std::vector<std::pair<std::int64_t, std::size_t>> shape;
    for (const auto& batch : store.batches()) shape.emplace_back(batch.visitedCount, batch.records.size());
    ASSERT_GE(shape.size(), 4U);
    EXPECT_EQ(shape.front(), (std::pair<std::int64_t, std::size_t>(0, 0)));
    EXPECT_EQ(shape.back().first, 230);
    std::size_t records = 0;
    bool hasHundred = false;
    for (const auto& [visited, count] : shape) {
        EXPECT_LE(count, 40U);
        records += count;
        hasHundred = hasHundred || visited == 100;
    }
    EXPECT_EQ(records, 90U);
    EXPECT_TRUE(hasHundred);
}

TEST(WalkScan, AStopEndsItAtTheNextFile) {
    const FolderStore store;
    for (int i = 1; i <= 150; ++i) store.add(fmt::format("Messages/{}.emlx", i), attachedMail("x"));
    std::stop_source stop;
    std::vector<std::int64_t> visited;
    store.scanner().scanBatches(
        [&](Batch&& batch) {
            visited.push_back(batch.visitedCount);
            if (batch.visitedCount >= 40) stop.request_stop();
        },
        stop.get_token());
    EXPECT_THAT(visited, ElementsAre(0, 40, 40));
}

TEST(WalkScan, AsksTheWorkerOnlyForWhatNothingElseTells) {
    FolderStore store;
    store.useWorker(
        "out(json.dumps({'ok': True, 'attachments': [{'file_name': '=?utf-8?B?5oql5ZGK?=.xyz', "
        "'content_type': 'text/rare', 'estimated_size': 7}, {'file_name': 'logo.png'}, {'file_name': ' '}, "
        "{'file_name': 'b.zip', 'estimated_size': -1}]}))");
    store.add("Messages/1.emlx", attachedMail("embedded"));
    store.add("Messages/2.emlx", emlx("Subject: stored"));
    store.add("Attachments/2/2/small.jpg", std::string(499'999, 'x'));
    store.add("Attachments/2/3/large.JPG", std::string(500'000, 'x'));
    store.add("Attachments/2/4/a.txt", "xyz");
    store.add("Attachments/2/5/A.TXT", "x");
    store.add("Messages/3.emlx", emlx("Subject: no mark"));
    const auto batches = store.batches();
    const auto records = recordsOf(batches);
    ASSERT_EQ(records.size(), 2U);
    EXPECT_THAT(described(records[0].attachments),
                ElementsAre("报告.xyz 7 text/rare", "b.zip -1 压缩/安装包"));
    EXPECT_THAT(described(records[1].attachments), ElementsAre("a.txt 3 TXT", "large.JPG 500000 图片"));
    EXPECT_EQ(testing::readWhole(store.home.at("asked")), "attachments shutdown ");
    EXPECT_THAT(batches.back().timingLog, HasSubstr("Python 1 次"));
    EXPECT_THAT(batches.back().timingLog, HasSubstr("4 命中"));
    EXPECT_THAT(batches.back().timingLog, HasSubstr("无附件快跳 1"));
}

TEST(WalkScan, AWorkerThatFindsNothingDecidesAndOneThatFailsDoesNot) {
    FolderStore store;
    for (int i = 1; i <= 3; ++i) store.add(fmt::format("Messages/{}.emlx", i), attachedMail("x"));
    store.useWorker("out('{\"ok\": true}')");
    EXPECT_THAT(store.subjects(), IsEmpty());
    for (const char* handle :
         {"out('{\"ok\": false}')", "out('garbage')", "sys.exit(0)", "os.kill(os.getpid(), 9)"}) {
        store.useWorker(handle);
        EXPECT_EQ(store.subjects().size(), 3U) << handle;
    }
    store.platform.runtimes = {store.home.at("missing")};
    EXPECT_EQ(store.subjects().size(), 3U);
}

TEST(WalkScan, ReadsTheStoreOfTheRealWorkerAndLeavesItAsItWas) {
    FolderStore store;
    store.platform.runtimes = {"/usr/bin/python3"};
    store.add("Messages/1.emlx", attachedMail("x"));
    store.add("Messages/2.emlx",
              emlx("Subject: y\nContent-Type: application/pdf; name=\"=?gbk?B?sai45g==?=.pdf\"", "QUJD"));
    const auto before = store.tree();
    const auto records = recordsOf(store.batches());
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(records[0].attachments[0].fileName, "a.pdf");
    EXPECT_EQ(records[1].attachments[0].fileName, "报告.pdf");
    EXPECT_THAT(store.changesSince(before), IsEmpty());
}

TEST(Attachments, AreFoundInAText) {
    struct {
        std::string text;
        std::vector<std::string> names;
    } const cases[] = {
        {"Content-Disposition: attachment; FILENAME=\"a b.pdf\"; name=c.txt\r\nname=\"a b.pdf\"",
         {"a b.pdf", "c.txt"}},
        {"filename*=UTF-8''%E6%96%87.pdf\n", {"%E6%96%87.pdf"}},
        {"filename*=gbk''%41.pdf\n", {"A.pdf"}},
        {" name=\"=?UTF-8?B?5oql5ZGK?=.pdf\"", {"报告.pdf"}},
        {"filename=logo.PNG; name=''", {}},
        {"filename=\"\"\nname=;", {}},
    };

    for (const auto& [text, names] : cases) {
        std::vector<std::string> found;
        for (const auto& each : extractAttachments(text)) found.push_back(each.fileName.str());
        EXPECT_EQ(found, names) << text;
    }
    for (const char* mark : {"CONTENT-DISPOSITION: Attachment", "Filename=", "filename*=", "filename*0*=",
                             " NAME=", "\nname=", "\r\nName=", "X-Apple-Part-URL"})
        EXPECT_TRUE(mime::mayContainEmbeddedAttachment(fmt::format("x{}y", mark))) << mark;
    for (const char* none : {"", "name=", "xname=y", "file name", "content-disposition:attachment"})
        EXPECT_FALSE(mime::mayContainEmbeddedAttachment(none)) << none;
}

TEST(Attachments, TheFirstSourceThatHasAnyDecides) {
    const FolderStore store;
    store.add("Messages/9.emlx", "x");
    store.add("Attachments/9/1/deep/er/stored.txt", "x");
    const FileURL file(store.at("Messages/9.emlx"));
    const std::vector<SharedText> named = {"a.pdf", "logo.png", "a.pdf"};
    const std::vector<SharedText> pictures = {"logo.png"};
    ScanTimingMetrics timing;
    EXPECT_THAT(described(resolvedAttachments(file, attachedBody, {.indexedNames = &named}, timing)),
                ElementsAre("a.pdf -1 PDF 文档", "a.pdf -1 PDF 文档"));
    EXPECT_THAT(described(resolvedAttachments(file, attachedBody, {.indexedNames = &pictures}, timing)),
                ElementsAre("stored.txt 1 TXT"));
    // An index knows one level of folders, a direct look all of them.
    const auto index = MailAttachmentFileLocator::makeIndex(store.home.at("Library/Mail"));
    EXPECT_EQ(index.folderCount(), 1U);
    EXPECT_THAT(described(resolvedAttachments(file, attachedBody, {.index = &index}, timing)),
                ElementsAre("a.pdf -1 PDF 文档"));
    for (int i = 0; i < 300; ++i) store.add(fmt::format("Attachments/9/1/{}.txt", i), "x");
    EXPECT_EQ(resolvedAttachments(file, "", {}, timing).size(), 199U);
}

} // namespace
} // namespace corvane::mailstore
