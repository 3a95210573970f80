#include "mailstore/folders/attachment_file_locator.h"

#include <utility>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mailstore/folders/store_listing.h"
#include "mailstore/scan/parse_indexed_message.h"
#include "platform/paths.h"
#include "support/temporary_home.h"

namespace corvane::mailstore {
namespace {

using ::testing::ElementsAre;

// A store with one account "U"; each question is answered by a listing made at need and by one made ahead.
class StoredAttachments : public ::testing::Test {
  protected:
    struct Found {
        std::vector<StoredAttachment> files;
        std::size_t folders = 0;

        [[nodiscard]] std::vector<std::string> names() const {
            std::vector<std::string> result;
            for (const auto& file : files) result.emplace_back(file.url.lastPathComponent());
            return result;
        }
    };

    [[nodiscard]] std::string message(const std::string& relativePath) const {
        return home.write("V10/U/" + relativePath, "0\n");
    }

    void attachment(const std::string& relativePath, const std::string& content = "x") const {
        home.write("V10/U/" + relativePath, content);
    }

    [[nodiscard]] static Found ask(StoreListing& listing, const std::string& file) {
        const auto& folder = listing.messageFolder(std::string(platform::parentPath(file)));
        const std::string_view baseName = platform::withoutExtension(platform::lastPathComponent(file));
        auto files = attachmentFiles(listing.attachmentRoots(folder), baseName);
        return {std::move(files), listing.attachmentFolderCount()};
    }

    [[nodiscard]] Found found(const std::string& file) const {
        StoreListing atNeed(home.path());
        StoreListing ahead(home.path());
        ahead.prefetch({}, [](std::string_view) { return true; });
        Found result = ask(atNeed, file);
        const Found same = ask(ahead, file);
        EXPECT_EQ(result.names(), same.names());
        EXPECT_EQ(result.folders, same.folders);
        return result;
    }

    testing::TemporaryHome home;
};

TEST_F(StoredAttachments, LieBesideTheMessagesFolderOrNearer) {
    const std::string file = message("Data/Messages/9.emlx");
    attachment("Data/Attachments/9/2/a10.txt");
    attachment("Data/Attachments/9/1.2/a9.txt");
    attachment("Data/Attachments/9/direct.txt");
    attachment("Data/Attachments/9/1/deep/no.txt");
    attachment("Data/Attachments/9/1/.hidden");
    attachment("Data/Attachments/90/1/other.txt");
    EXPECT_THAT(found(file).names(), ElementsAre("a9.txt", "a10.txt", "direct.txt"));
    attachment("Data/Messages/Attachments/9/1/nearer.txt");
    EXPECT_THAT(found(file).names(), ElementsAre("nearer.txt"));
}

TEST_F(StoredAttachments, AnEmptyNearerFolderLetsAFartherOneCount) {
    const std::string file = message("a/Messages/9.emlx");
    home.makeFolder("V10/U/a/Attachments/9/1");
    attachment("Attachments/9/1/far.txt");
    home.write("V10/U/other/Attachments/1/1/not.txt", "x");
    EXPECT_THAT(found(file).names(), ElementsAre("far.txt"));
    EXPECT_EQ(found(file).folders, 2U) << "only where a message could have them";
    EXPECT_THAT(found("/nowhere/Messages/9.emlx").names(), ::testing::IsEmpty());
}

TEST_F(StoredAttachments, LieAtMostSevenFoldersAboveAndAlsoAboveTheStore) {
    const std::string deep = message("1/2/3/4/5/6/Messages/9.emlx");
    attachment("Attachments/9/1/eighth.txt");
    EXPECT_THAT(found(deep).names(), ElementsAre("eighth.txt"));
    EXPECT_THAT(found(message("0/1/2/3/4/5/6/Messages/9.emlx")).names(), ::testing::IsEmpty());
    home.write("Attachments/8/1/outside.txt", "x");
    EXPECT_THAT(found(message("Data/Messages/8.emlx")).names(), ElementsAre("outside.txt"));
}

TEST_F(StoredAttachments, ReplaceNamedOnesAndSmallPicturesDoNotCount) {
    const std::string file = message("Data/Messages/9.emlx");
    attachment("Data/Attachments/9/1/REPORT.pdf", "12345");
    attachment("Data/Attachments/9/2/small.jpg", std::string(499'999, 'x'));
    attachment("Data/Attachments/9/3/large.jpg", std::string(500'000, 'x'));
    IndexedMessageCandidate candidate;
    candidate.size = 1;
    for (const char* name : {"report.pdf", "Notes.txt", "notes.TXT", "logo.png", "  "})
        candidate.attachmentNames.emplace_back(name);
    ScanTimingMetrics timing;
    TextInterner texts;
    const auto record =
        parseIndexedMessage(FileURL(SharedText(file)), candidate, found(file).files, texts, timing);
    std::vector<std::string> told;
    for (const auto& attachment : record.attachments)
        told.push_back(fmt::format("{} {} {}", attachment.fileName, attachment.estimatedSize.value_or(-1),
                                   attachment.sourceFileURL.has_value()));
    EXPECT_THAT(told, ElementsAre("REPORT.pdf 5 true", "Notes.txt -1 false", "large.jpg 500000 true"));
}

} // namespace
} // namespace corvane::mailstore
