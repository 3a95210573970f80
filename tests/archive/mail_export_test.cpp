#include "archive/export/mail_export.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "archive/export/mbox_format.h"
#include "records/archived/content_hash.h"
#include "support/faulty_file_layer.h"
#include "support/scripted_platform.h"

namespace corvane::testing {
namespace {

namespace fs = std::filesystem;

TEST(MboxQuoting, IsTheSameHoweverTheMailComesInPieces) {
    const std::string mail = "From a\r\n>From b\n>>From c\nFro\n>Frog\n From d\n\nFrom\n>From ";
    const std::string expected = ">From a\r\n>>From b\n>>>From c\nFro\n>Frog\n From d\n\nFrom\n>>From \n\n";
    for (std::size_t size = 1; size <= mail.size(); ++size) {
        std::string written;
        archive::MboxQuoting quoting([&](std::string_view bytes) { written += bytes; });
        for (std::size_t at = 0; at < mail.size(); at += size)
            quoting.add(std::string_view(mail).substr(at, size));
        quoting.end();
        EXPECT_EQ(written, expected) << size;
    }
}

TEST(MboxFormat, TheFromLineHoldsAPlainAddressAndAnEnglishDate) {
    ArchivedEmailRecord record;
    record.date = Date(std::chrono::seconds(1'388'829'605));
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"王 <wang@example.com>", "From wang@example.com Sat Jan  4 10:00:05 2014\n"},
        {"a@b c\nFrom x", "From MAILER-DAEMON Sat Jan  4 10:00:05 2014\n"},
        {"名字@例子", "From MAILER-DAEMON Sat Jan  4 10:00:05 2014\n"},
    };
    for (const auto& [sender, line] : cases) {
        record.sender = SharedText(sender);
        EXPECT_EQ(archive::mboxFromLine(record), line);
    }
}

class Exporting : public ::testing::Test {
  protected:
    void add(const std::string& id, const std::string& content) {
        ArchivedEntry entry{.record = {}, .locationRootPath = SharedText(home_.at("Archive"))};
        entry.record.id = SharedText(id);
        entry.record.emlRelativePath = SharedText("2014/a/" + id + ".eml");
        entry.record.sizeBytes = std::ssize(content);
        entry.record.contentHash = SharedText(contentHashText(platform::sha256(content)));
        home_.write("Archive/2014/a/" + id + ".eml", content);
        entries_.push_back(entry);
    }

    ExportResult run(
        ExportFormat format, const std::string& path, const std::stop_token& stop = {},
        const ExportProgress& progress = [](auto, auto) {}) {
        ExportSelection selection{std::make_shared<const std::vector<ArchivedEntry>>(entries_), {}};
        for (std::uint32_t i = 0; i < entries_.size(); ++i) selection.positions.push_back(i);
        return MailExport{platform_, files_, {.ofLook = std::chrono::milliseconds(200)}}.run(
            selection, format, path, progress, stop);
    }

    std::vector<std::string> filesIn(const std::string& folder) {
        std::vector<std::string> names;
        for (const auto& entry : fs::recursive_directory_iterator(home_.makeFolder(folder)))
            if (entry.is_regular_file()) names.push_back(entry.path().filename());
        std::ranges::sort(names);
        return names;
    }

    TemporaryHome home_;
    ScriptedPlatform platform_{home_};
    FaultyFileLayer files_;
    std::vector<ArchivedEntry> entries_;
};

TEST_F(Exporting, WhatIsNotTheArchivedMailAnyMoreFailsByItself) {
    const std::string large(std::size_t{9} << 20, 'x'); // longer than what is kept in memory
    add("whole", "From: a\n\nb");
    add("altered", "From: a\n\nb");
    add("gone", "From: a\n\nb");
    add("large", large);
    home_.write("Archive/2014/a/altered.eml", "From: a\n\nc");
    fs::remove(home_.at("Archive/2014/a/gone.eml"));
    for (const auto format : {ExportFormat::mbox, ExportFormat::zip, ExportFormat::eml}) {
        const std::string path = home_.at("out" + std::to_string(static_cast<int>(format)));
        const ExportResult result = run(format, path);
        EXPECT_EQ(result.exported, 2);
        EXPECT_EQ(result.bytes, 10 + std::ssize(large));
        ASSERT_EQ(result.failures.size(), 2U);
        EXPECT_EQ(result.failures[0].entryID, entries_[1].id());
        EXPECT_EQ(result.failures[1].entryID, entries_[2].id());
        if (format != ExportFormat::eml) {
            EXPECT_THROW((void)run(format, path), ExportError) << "nothing is written over";
        }
    }
    const std::string folder = home_.at("out1");
    home_.write("out1/未知年份/whole.eml", "another one's");
    EXPECT_EQ(run(ExportFormat::eml, folder).exported, 2);
    EXPECT_EQ(filesIn("out1"), (std::vector<std::string>{"large.eml", "whole-2.eml", "whole.eml"}));
    EXPECT_EQ(readWhole(home_.at("out1/未知年份/whole.eml")), "another one's");
    fs::remove_all(home_.at("Archive/2014"));
    for (const auto format : {ExportFormat::mbox, ExportFormat::zip, ExportFormat::eml}) {
        const std::string path = home_.at("none" + std::to_string(static_cast<int>(format)));
        EXPECT_EQ(run(format, path).failures.size(), entries_.size());
    }
    fs::rename(home_.at("Archive"), home_.at("away"));
    EXPECT_EQ(run(ExportFormat::mbox, home_.at("none")).failures.front().reason, "归档位置没有连接");
    home_.write("Archive/archive-index.json", "{}");
    EXPECT_THROW((void)run(ExportFormat::eml, home_.at("Archive/2014/a")), ExportError);
}

TEST_F(Exporting, ADiskThatFailsLeavesNothingThatLooksLikeMail) {
    add("a", "From: a\n\nb");
    const std::vector<Fault> faults = {
        {.effect = Effect::fail, .operation = FileOperation::write, .error = ENOSPC, .path = "/to/"},
        {.effect = Effect::corrupt, .operation = FileOperation::write, .path = "/to/"},
        {.effect = Effect::fail, .operation = FileOperation::sync, .path = "/to/"},
        {.effect = Effect::corrupt, .operation = FileOperation::read, .path = "/to/"},
        {.effect = Effect::fail, .operation = FileOperation::rename, .path = "/to/"},
    };
    for (const auto format : {ExportFormat::mbox, ExportFormat::zip, ExportFormat::eml}) {
        for (const Fault& fault : faults) {
            files_.inject(fault);
            if (format == ExportFormat::eml) {
                EXPECT_EQ(run(format, home_.at("to/out")).failures.size(), 1U);
            } else {
                EXPECT_THROW((void)run(format, home_.makeFolder("to") + "/out"), ExportError);
            }
            EXPECT_EQ(filesIn("to"), std::vector<std::string>()) << static_cast<int>(*fault.operation);
        }
        fs::remove_all(home_.at("to"));
    }
}

// What it leaves, as a killed export does, goes with the next one.
TEST_F(Exporting, APlaceThatHangsEndsTheExport) {
    add("a", "From: a\n\nb");
    for (const auto format : {ExportFormat::mbox, ExportFormat::zip, ExportFormat::eml}) {
        for (const auto operation : {FileOperation::open, FileOperation::write, FileOperation::sync}) {
            fs::remove_all(home_.at("to"));
            const std::string path = home_.makeFolder("to") + "/out";
            files_.inject({.effect = Effect::hang, .operation = operation, .path = "/to/"});
            EXPECT_THROW((void)run(format, path), ExportError);
            files_.release();
            platform::waitForAbandonedJobs();
            EXPECT_FALSE(fs::exists(path) && fs::is_regular_file(path));
            EXPECT_EQ(run(format, path).exported, 1);
            EXPECT_EQ(filesIn("to").size(), 1U);
        }
    }
}

TEST_F(Exporting, ACancelledExportKeepsOnlyWholeFiles) {
    for (const char* const id : {"a", "b", "c"}) add(id, "From: a\n\nb");
    for (const auto format : {ExportFormat::mbox, ExportFormat::zip, ExportFormat::eml}) {
        std::stop_source stop;
        const std::string path = home_.makeFolder("to") + "/out";
        const ExportResult result = run(format, path, stop.get_token(), [&](std::int64_t done, std::int64_t) {
            if (done == 2) stop.request_stop();
        });
        EXPECT_TRUE(result.wasCancelled);
        EXPECT_EQ(result.exported, std::ssize(filesIn("to")));
        EXPECT_EQ(result.exported, format == ExportFormat::eml ? 2 : 0);
    }
}

} // namespace
} // namespace corvane::testing
