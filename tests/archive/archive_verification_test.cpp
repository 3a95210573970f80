#include "archive/checks/archive_verification.h"

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <optional>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>

#include "archive/archive_error.h"
#include "archive/archive_fixture.h"
#include "archive/checks/archive_reader.h"
#include "archive/checks/archive_sums.h"
#include "archive/destination/archive_destination.h"
#include "platform/files/sha256.h"
#include "records/archived/content_hash.h"

namespace corvane::testing {
namespace {

class VerificationOfAnArchive : public ArchiveFixture {
  protected:
    void SetUp() override {
        archive({store("a", "一", {mailText("a", "body of a\n", "Subject: 一\n")}),
                 store("b", "二", {mailText("b", "body of b\n", "Subject: 二\n")}),
                 store("", "三", {"From: x\n\nno id"}),
                 store("v", "四", {mailText("v", "one"), mailText("v", "other")})});
        forgetHashes();
    }

    // As indexes of older versions are.
    void forgetHashes() {
        rewriteIndex([](EmailArchiveIndex& changed) {
            for (ArchivedEmailRecord& record : changed.records) record.contentHash.reset();
        });
    }

    ArchiveVerification recordHashes(platform::FileLayer& files = platform::posixFileLayer()) {
        return verifyArchive(root, {}, {}, files, HashRecording{});
    }

    void rewriteIndex(const std::function<void(EmailArchiveIndex&)>& change) {
        EmailArchiveIndex changed = index();
        change(changed);
        home.write("Archive/archive-index.json", encodeArchiveIndex(changed));
    }

    // How many operations reading the index takes.
    std::size_t countOfIndex(FileOperation operation) {
        FaultyFileLayer files;
        archive::ArchiveReader(files, root, {}).readIndex();
        return files.operationCount(operation);
    }

    const std::string first = "2020/工作/2020-09-13 一.eml";
    const std::string second = "2020/工作/2020-09-13 二.eml";
    const std::string third = "2020/工作/2020-09-13 三.eml";
};

using Paths = std::vector<std::string>;
using Findings = std::map<std::string, Paths>;

// Without the empty ones.
Findings findingsOf(const ArchiveVerification& found) {
    Findings findings{{"missing", found.missing},
                      {"sizeMismatch", found.sizeMismatch},
                      {"altered", found.altered},
                      {"unindexed", found.unindexed},
                      {"identityMismatch", found.identityMismatch},
                      {"duplicatePaths", found.duplicatePaths},
                      {"unreadable", found.unreadable}};
    std::erase_if(findings, [](const auto& finding) { return finding.second.empty(); });
    return findings;
}

TEST_F(VerificationOfAnArchive, OfAnArchiveAsWrittenFindsNothing) {
    home.write("Archive/app-backup.json", "{}");
    home.write("Archive/2020/工作/._2020-09-13 一.eml", "AppleDouble");
    home.write("Archive/.Trash/x.eml", "hidden");
    std::vector<ArchivedFileReading> readings;
    const auto keep = [&](std::vector<ArchivedFileReading> made) { readings = std::move(made); };
    FaultyFileLayer files;
    const ArchiveVerification found = verifyArchive(root, {}, {}, files, std::nullopt, keep);
    EXPECT_TRUE(found.isClean());
    EXPECT_EQ(found.checked, 5);
    std::int64_t bytes = 0;
    for (const ArchivedEmailRecord& record : index().records) bytes += record.sizeBytes;
    EXPECT_EQ(found.bytes, bytes);
    EXPECT_EQ(found.unchecked, 5);
    ASSERT_EQ(readings.size(), 5U);
    EXPECT_EQ(readings[0].relativePath, first);
    EXPECT_EQ(readings[0].reading.hash, platform::sha256(readWhole(at(first))));
    EXPECT_EQ(readings[0].reading.stamp.sizeBytes, std::int64_t(readWhole(at(first)).size()));

    std::filesystem::remove(at(first));
    readings.clear();
    files.inject({.effect = Effect::failFromHere, .operation = FileOperation::rename, .error = EIO});
    EXPECT_THROW(verifyArchive(root, {}, {}, files, HashRecording{}, keep), std::exception);
    ASSERT_EQ(readings.size(), 5U) << "whatever becomes of the index";
    EXPECT_EQ(readings[0].reading.outcome, FileReading::Outcome::gone);
}

TEST_F(VerificationOfAnArchive, NamesExactlyTheDamage) {
    const std::string text = readWhole(at(first));

    struct {
        const char* what;
        std::function<void()> damage;
        Findings expected; // of records without a hash
        std::optional<Findings> withHashes{};
    } cases[] = {
        {"lost", [&] { std::filesystem::remove(at(first)); }, {{"missing", {first}}}},
        {"in the cloud",
         [&] {
             std::filesystem::remove(at(first));
             home.write("Archive/2020/工作/.2020-09-13 一.eml.icloud", "");
         },
         {{"unreadable", {first}}}},
        {"a folder in its place",
         [&] {
             std::filesystem::remove(at(first));
             std::filesystem::create_directory(at(first));
         },
         {{"missing", {first}}}},
        {"cut",
         [&] { std::filesystem::resize_file(at(first), text.size() - 1); },
         {{"sizeMismatch", {first}}},
         Findings{{"sizeMismatch", {first}}, {"altered", {first}}}},
        {"grown",
         [&] { std::filesystem::resize_file(at(first), text.size() + 1); },
         {{"sizeMismatch", {first}}},
         Findings{{"sizeMismatch", {first}}, {"altered", {first}}}},
        {"a changed bit",
         [&] {
             std::string changed = text;
             changed.back() ^= 1;
             home.write("Archive/" + first, changed);
         },
         {},
         Findings{{"altered", {first}}}},
        {"swapped for another mail",
         [&] {
             std::filesystem::copy_file(at(second), at(first),
                                        std::filesystem::copy_options::overwrite_existing);
         },
         {{"identityMismatch", {first}}},
         Findings{{"altered", {first}}}},
        {"zeros",
         [&] { home.write("Archive/" + first, std::string(text.size(), '\0')); },
         {{"identityMismatch", {first}}},
         Findings{{"altered", {first}}}},
        {"mail of nobody",
         [&] {
             home.write("Archive/2020/工作/more.EML", "x");
             home.write("Archive/more.eml", "x");
             home.write("Archive/2020/工作/notes.txt", "x");
         },
         {{"unindexed", {"2020/工作/more.EML", "more.eml"}}}},
        {"two records of one file",
         [&] {
             rewriteIndex([&](EmailArchiveIndex& changed) {
                 for (const char* path : {"2020/工作/2020-09-13 一.eml", "2020//工作/2020-09-13 一.eml"}) {
                     auto copy = changed.records[0];
                     copy.id = "mid:a#v9";
                     copy.emlRelativePath = path;
                     changed.records.push_back(copy);
                 }
             });
         },
         {{"duplicatePaths", {first, "2020//工作/2020-09-13 一.eml"}}}},
        {"a record that contradicts itself",
         [&] { rewriteIndex([](EmailArchiveIndex& changed) { changed.records[2].sender = "other"; }); },
         {{"identityMismatch", {third}}}},
        {"hard-linked to another record's file",
         [&] {
             std::filesystem::remove(at(first));
             std::filesystem::create_hard_link(at(second), at(first));
         },
         {{"identityMismatch", {first}}, {"duplicatePaths", {second}}},
         Findings{{"altered", {first}}, {"duplicatePaths", {second}}}},
    };

    std::filesystem::copy(root, home.at("Start"), std::filesystem::copy_options::recursive);
    for (auto& [what, damage, expected, withHashes] : cases) {
        for (const bool hasHashes : {false, true}) {
            SCOPED_TRACE(what);
            std::filesystem::remove_all(root);
            std::filesystem::copy(home.at("Start"), root, std::filesystem::copy_options::recursive);
            if (hasHashes) recordHashes();
            damage();
            const Findings& wanted = hasHashes && withHashes ? *withHashes : expected;
            const ArchiveVerification found = verifyArchive(root);
            EXPECT_EQ(findingsOf(found), wanted);
            EXPECT_EQ(found.isClean(), wanted.empty());
        }
    }
}

TEST_F(VerificationOfAnArchive, RecordsTheHashesOfSoundFilesThatReadTheSameTwice) {
    home.write("Archive/" + second, "From: a\n\ncut");
    const ArchiveVerification found = recordHashes();
    EXPECT_EQ(found.recorded, 4);
    EXPECT_EQ(found.unchecked, 1);
    for (const ArchivedEmailRecord& record : index().records) {
        const std::string content = readWhole(at(record.emlRelativePath));
        const bool isSound = record.emlRelativePath != second;
        EXPECT_EQ(record.contentHash.has_value(), isSound);
        if (isSound) {
            EXPECT_EQ(record.contentHash, contentHashText(platform::sha256(content)));
        }
    }
    EXPECT_EQ(recordHashes().recorded, 0);

    forgetHashes();
    FaultyFileLayer files;
    const std::size_t readsOfOnePass = [&] {
        verifyArchive(root, {}, {}, files);
        return files.operationCount(FileOperation::read);
    }();
    files.inject({.at = readsOfOnePass + countOfIndex(FileOperation::read) + 1,
                  .effect = Effect::corrupt,
                  .operation = FileOperation::read});
    const ArchiveVerification unsteady = recordHashes(files);
    EXPECT_EQ(unsteady.unreadable, Paths{first});
    EXPECT_EQ(unsteady.recorded, 3);
}

TEST_F(VerificationOfAnArchive, RecordsNothingWhileSomebodyElseWrites) {
    archive::ArchiveDestination other(platform::posixFileLayer(), root, platform::placeLimit);
    other.lock();
    EXPECT_THROW(recordHashes(), ArchiveAccessError);
    EXPECT_FALSE(index().records[0].contentHash);
}

TEST_F(VerificationOfAnArchive, GivesSumsThatOtherProgramsCheck) {
    EXPECT_EQ(sumsOfArchive(root).withoutHash, 5);
    recordHashes();
    std::string lines;
    for (const ArchiveSums::Sum& sum : sumsOfArchive(root).sums) lines += sumLine(sum) + "\n";
    const std::string odd = "a\\b\nc.eml";
    home.write("Archive/" + odd, "x");
    lines += sumLine({odd, hexDigits(platform::sha256("x"))}) + "\n";
    home.write("sums.txt", lines);
    const std::string command =
        "command -v sha256sum >/dev/null || sha256sum() { shasum -a 256 \"$@\"; }; cd '" + root +
        "' && sha256sum --status -c ../sums.txt && test $(sha256sum -c ../sums.txt | wc -l) = 6";
    EXPECT_EQ(std::system(command.c_str()), 0);
    EmailArchiveIndex hostile = index();
    for (ArchivedEmailRecord& record : hostile.records) record.emlRelativePath = "../x";
    EXPECT_TRUE(sumsOf(hostile).sums.empty());
}

TEST_F(VerificationOfAnArchive, NeverOpensAPathThatLeavesTheRoot) {
    const std::string outside = home.write("outside/x.eml", mailText("a", "body of a\n"));
    ASSERT_EQ(::symlink(home.at("outside").c_str(), at("planted").c_str()), 0);
    ASSERT_EQ(::symlink(outside.c_str(), at("link.eml").c_str()), 0);
    const Paths hostile{outside,
                        "../outside/x.eml",
                        "planted/x.eml",
                        "link.eml",
                        "",
                        "2020/../../outside/x.eml",
                        std::string("2020\0/x.eml", 11)};
    rewriteIndex([&](EmailArchiveIndex& changed) {
        const auto sample = changed.records[0];
        changed.records.clear();
        for (const std::string& path : hostile) {
            changed.records.push_back(sample);
            changed.records.back().emlRelativePath = path;
        }
    });
    FaultyFileLayer files;
    const ArchiveVerification found = verifyArchive(root, {}, {}, files);
    EXPECT_EQ(found.missing, hostile);
    EXPECT_EQ(found.bytes, 0);
    EXPECT_EQ(files.operationCount(FileOperation::open), 1U) << "of the index";
}

TEST_F(VerificationOfAnArchive, TellsWhatCouldNotBeReadFromWhatIsMissing) {
    for (const FileOperation operation : {FileOperation::open, FileOperation::read}) {
        FaultyFileLayer files;
        files.inject({.at = countOfIndex(operation) + 1, .effect = Effect::fail, .operation = operation});
        const ArchiveVerification found = verifyArchive(root, {}, {}, files);
        EXPECT_EQ(found.unreadable, Paths{first});
        EXPECT_TRUE(found.missing.empty() && found.sizeMismatch.empty() && found.unindexed.empty());
    }
}

TEST_F(VerificationOfAnArchive, WithoutAUsableIndexIsAnError) {
    EXPECT_EQ(errorOf([&] { verifyArchive(home.at("none")); }),
              "找不到归档索引“" + home.at("none/archive-index.json") + "”：位置不存在或磁盘未连接");
    home.write("Archive/archive-index.json", "{");
    EXPECT_EQ(errorOf([&] { verifyArchive(root); }),
              "无法使用归档索引“" + at("archive-index.json") + "”：文件无法读取，或内容已损坏");
}

TEST_F(VerificationOfAnArchive, StopsBetweenFilesWithoutCallingTheRestUnindexed) {
    std::stop_source stop;
    const auto found = verifyArchive(
        root,
        [&](std::size_t checked, std::size_t total) {
            EXPECT_EQ(total, 5U);
            if (checked == 2) stop.request_stop();
        },
        stop.get_token());
    EXPECT_TRUE(found.wasCancelled);
    EXPECT_EQ(found.checked, 2);
    EXPECT_TRUE(found.unindexed.empty());
}

TEST_F(VerificationOfAnArchive, AMessageWithoutMessageIDInItsHeaderIsNoMismatch) {
    archive({store("from-the-index@x", "五", {"From: a\n\nbody"}),
             store("case@x", "六", {"From: a\r\nMessage-ID:\r\n <CASE@x>\r\n\r\nMessage-ID: <other@x>"})});
    EXPECT_TRUE(verifyArchive(root).isClean());
}

} // namespace
} // namespace corvane::testing
