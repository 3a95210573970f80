#include "mailstore/attachment_file_locator.h"

#include <filesystem>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mailstore/attachment_names.h"
#include "mailstore/mail_data_scanner.h"
#include "support/temporary_home.h"

namespace corvane::mailstore {
namespace {

using ::testing::ElementsAre;

TEST(AttachmentNames, AreCleanedByEveryRule) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {" \"report.pdf\"\r\n", "report.pdf"},
        {"=?UTF-8?B?5oql5ZGK?=.pdf", "报告.pdf"},
        {"UTF-8''%E6%96%87.pdf", "文.pdf"},
        {"iso-8859-7''a%20b.pdf", "a b.pdf"},
        {"windows-1252''x.doc", "x.doc"},
        {"koi''a%20b.pdf", "koi''a b.pdf"},
        {"it''s 100%.txt", "it''s 100%.txt"},
        {"a%20b.pdf", "a%20b.pdf"},
        {"<abc@host>report.pdf", "report.pdf"},
        {"<abc@host>  ", ""},
        {"<abc>report.pdf", "<abc>report.pdf"},
        {"report .pdf", "report.pdf"},
        {"a . . b.pdf", "a.b.pdf"},
        {".hidden", "hidden"},
        {"..", ".."},
        {"a\u00A0b\u3000c\td.txt", "a b c d.txt"},
        {"a\\b\\.txt", "ab.txt"},
        {"", ""},
    };
    for (const auto& [name, expected] : cases) EXPECT_EQ(cleanAttachmentName(name), expected) << name;
}

TEST(AttachmentNames, LabelsGoByExtensionThenContentType) {
    EXPECT_EQ(mimeTypeGuess("a.PDF", "text/plain"), "PDF 文档");
    EXPECT_EQ(mimeTypeGuess("a.svg", ""), "图片");
    EXPECT_EQ(mimeTypeGuess("a.7z", ""), "压缩/安装包");
    EXPECT_EQ(mimeTypeGuess("a.bmp", ""), "BMP");
    EXPECT_EQ(mimeTypeGuess("a.xyz", "Application/Octet-Stream"), "XYZ");
    EXPECT_EQ(mimeTypeGuess("a.é1", ""), "É1");
    EXPECT_EQ(mimeTypeGuess("a.xyz", "text/calendar"), "text/calendar");
    EXPECT_EQ(mimeTypeGuess("plain", ""), "附件");
}

TEST(AttachmentNames, CaretJointsSplitOnlyFileNames) {
    EXPECT_THAT(splitCaretJoinedName("a^_b.pdf"), ElementsAre("a^_b.pdf"));
    EXPECT_THAT(splitCaretJoinedName("a.txt^_b.pdf"), ElementsAre("a.txt", "b.pdf"));
    EXPECT_THAT(splitCaretJoinedName("a.txt^_"), ElementsAre("a.txt^_"));
    EXPECT_THAT(splitCaretJoinedName("a"), ElementsAre("a"));
}

std::vector<std::string> names(const std::vector<FileURL>& files) {
    std::vector<std::string> result;
    for (const auto& file : files) result.emplace_back(file.lastPathComponent());
    return result;
}

class StoredAttachments : public ::testing::Test {
  protected:
    FileURL message(const std::string& relativePath) const {
        return FileURL(home.write(relativePath, "0\n"));
    }

    std::vector<std::string> found(const FileURL& file) const {
        return names(MailAttachmentFileLocator::makeIndex({file}).attachmentFiles(file));
    }

    testing::TemporaryHome home;
};

TEST_F(StoredAttachments, LieBesideTheMessagesFolderOrNearer) {
    const FileURL file = message("Data/Messages/9.emlx");
    home.write("Data/Attachments/9/2/a10.txt", "x");
    home.write("Data/Attachments/9/1.2/a9.txt", "x");
    home.write("Data/Attachments/9/direct.txt", "x");
    home.write("Data/Attachments/9/1/deep/no.txt", "x");
    home.write("Data/Attachments/9/1/.hidden", "x");
    home.write("Data/Attachments/90/1/other.txt", "x");
    EXPECT_THAT(found(file), ElementsAre("a9.txt", "a10.txt", "direct.txt"));
    home.write("Data/Messages/Attachments/9/1/nearer.txt", "x");
    EXPECT_THAT(found(file), ElementsAre("nearer.txt"));
}

TEST_F(StoredAttachments, AnEmptyNearerFolderLetsAFartherOneCount) {
    const FileURL file = message("a/Messages/9.emlx");
    home.makeFolder("a/Attachments/9/1");
    home.write("Attachments/9/1/far.txt", "x");
    const auto index = MailAttachmentFileLocator::makeIndex({file});
    EXPECT_THAT(names(index.attachmentFiles(file)), ElementsAre("far.txt"));
    EXPECT_EQ(index.folderCount(), 2U);
    EXPECT_THAT(found(FileURL("/nowhere/Messages/9.emlx")), ::testing::IsEmpty());
}

TEST_F(StoredAttachments, ReplaceNamedOnesAndSmallPicturesDoNotCount) {
    const FileURL file = message("Data/Messages/9.emlx");
    const std::string folder = "Data/Attachments/9/";
    home.write(folder + "1/REPORT.pdf", "12345");
    home.write(folder + "2/small.jpg", std::string(499'999, 'x'));
    home.write(folder + "3/large.jpg", std::string(500'000, 'x'));
    IndexedMessageCandidate candidate;
    candidate.size = 1;
    for (const char* name : {"report.pdf", "Notes.txt", "notes.TXT", "logo.png", "  "})
        candidate.attachmentNames.emplace_back(name);
    ScanTimingMetrics timing;
    const auto record =
        parseIndexedMessage(file, candidate, MailAttachmentFileLocator::makeIndex({file}), {}, timing);
    std::vector<std::string> told;
    for (const auto& attachment : record.attachments)
        told.push_back(fmt::format("{} {} {}", attachment.fileName, attachment.estimatedSize.value_or(-1),
                                   attachment.sourceFileURL.has_value()));
    EXPECT_THAT(told, ElementsAre("REPORT.pdf 5 true", "Notes.txt -1 false", "large.jpg 500000 true"));
}

} // namespace
} // namespace corvane::mailstore
