#include "archive/archive_fixture.h"

#include <cstdint>
#include <filesystem>
#include <set>

#include <fmt/format.h>

#include "archive/archive_error.h"
#include "platform/files/file_look.h"
#include "records/archived/content_hash.h"

namespace corvane::testing {

namespace fs = std::filesystem;

Tree treeOf(const std::string& root) {
    Tree tree;
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        if (entry.is_regular_file()) {
            tree[fs::relative(entry.path(), root).string()] = readWhole(entry.path().string());
        }
    }
    return tree;
}

std::string emlx(std::string_view message) {
    return fmt::format("{}      \n{}<?xml version=\"1.0\"?>\n<plist><dict/></plist>\n", message.size(),
                       message);
}

std::string mailText(std::string_view messageID, std::string_view body, std::string_view extraHeader) {
    return fmt::format(
        "From: a@example.com\nMessage-ID: <{}>\n{}Cc: =?utf-8?B?5L2g5aW9?= <c@example.com>\n\n{}", messageID,
        extraHeader, body);
}

Counts countsOf(const EmailArchiveRunResult& result) {
    return {result.archivedCount, result.skippedAlreadyArchived, result.failedCount};
}

std::string errorOf(const std::function<void()>& call) {
    try {
        call();
        return {};
    } catch (const ArchiveAccessError& error) {
        return error.what();
    }
}

MailMessageRecord ArchiveFixture::store(const std::string& messageID, const std::string& subject,
                                        const std::vector<std::string>& copies) {
    std::vector<FileURL> urls;
    for (const std::string& copy : copies) {
        const std::string name = fmt::format("Library/Mail/V10/A/INBOX.mbox/Messages/{}.emlx", ++files_);
        urls.emplace_back(SharedText(home.write(name, emlx(copy))));
    }
    MailMessageRecord message;
    message.id = urls.front().path();
    message.fileURL = urls.front();
    message.relatedMessageFileURLs = urls;
    message.subject = subject;
    message.sender = "a@example.com";
    message.date = Date(std::chrono::seconds(1'600'000'000)); // 2020-09-13
    message.mailbox = "INBOX";
    message.accountName = "工作";
    if (!messageID.empty()) message.messageIdentifier = SharedText(messageID);
    return message;
}

MailMessageRecord ArchiveFixture::store(const std::string& messageID, const std::string& subject) {
    return store(messageID, subject, {mailText(messageID, "body of " + messageID + "\n")});
}

ArchiverOptions ArchiveFixture::options() const {
    ArchiverOptions options;
    options.now = [date = now] { return date; };
    return options;
}

EmailArchiveRunResult ArchiveFixture::archive(const MessageList& messages, platform::FileLayer& files) {
    reports.clear();
    return MailEmailArchiver(files, options())
        .archive(messages, root, [this](const EmailArchiveProgress& report) { reports.push_back(report); });
}

EmailArchiveIndex ArchiveFixture::index() const {
    return readArchiveIndex(at("archive-index.json")).value();
}

void ArchiveFixture::expectEveryRecordProved() const {
    std::set<std::string> ids;
    for (const ArchivedEmailRecord& record : index().records) {
        EXPECT_TRUE(ids.insert(record.id.str()).second) << record.id;
        const std::string content = readWhole(at(record.emlRelativePath.view()));
        EXPECT_EQ(static_cast<std::int64_t>(content.size()), record.sizeBytes) << record.id;
        EXPECT_EQ(record.contentHash, SharedText(contentHashText(platform::sha256(content)))) << record.id;
    }
}

void ArchiveFixture::expectTrue(const EmailArchiveRunResult& result) const {
    expectEveryRecordProved();
    std::set<std::string> recorded;
    for (const ArchivedEmailRecord& record : index().records) recorded.insert(record.emlRelativePath.str());
    EXPECT_LE(result.archivedCount + result.skippedAlreadyArchived,
              static_cast<std::int64_t>(result.archivedReadings.size()));
    for (const ArchivedFileReading& file : result.archivedReadings) {
        const std::string content = readWhole(at(file.relativePath));
        EXPECT_TRUE(recorded.contains(file.relativePath)) << file.relativePath;
        EXPECT_EQ(file.reading.hash, platform::sha256(content)) << file.relativePath;
        EXPECT_EQ(file.reading.stamp.sizeBytes, static_cast<std::int64_t>(content.size()));
        EXPECT_EQ(file.reading.stamp, stampOf(platform::lookAtFile(at(file.relativePath))))
            << file.relativePath;
    }
}

} // namespace corvane::testing
