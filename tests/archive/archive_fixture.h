// A small Mail store of .emlx files and an archive folder, for runs of the archiver with real files.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "archive/run/mail_email_archiver.h"
#include "records/archive_files/archive_index_file.h"
#include "support/faulty_file_layer.h"
#include "support/temporary_home.h"

namespace corvane::testing {

// Relative path to content, of all files, hidden ones too.
using Tree = std::map<std::string, std::string>;

Tree treeOf(const std::string& root);

// The bytes of a message file: the count, the message, Mail's property list.
std::string emlx(std::string_view message);

std::string mailText(std::string_view messageID, std::string_view body, std::string_view extraHeader = {});

// Of a run: archived, there already, failed.
struct Counts {
    std::int64_t archived;
    std::int64_t skipped;
    std::int64_t failed;

    friend bool operator==(const Counts&, const Counts&) = default;
};

Counts countsOf(const EmailArchiveRunResult& result);

// The text of the error with which the call ends; empty when it ends well.
std::string errorOf(const std::function<void()>& call);

class ArchiveFixture : public ::testing::Test {
  protected:
    // Writes one file for each text, and gives the record of a message with them all as its copies.
    MailMessageRecord store(const std::string& messageID, const std::string& subject,
                            const std::vector<std::string>& copies);
    MailMessageRecord store(const std::string& messageID, const std::string& subject = "每周报告");

    // With time standing still, so that runs can be compared.
    EmailArchiveRunResult archive(const MessageList& messages,
                                  platform::FileLayer& files = platform::posixFileLayer());

    [[nodiscard]] ArchiverOptions options() const;
    [[nodiscard]] EmailArchiveIndex index() const;

    // What a reader of the archive may always rely on: every record's file is there, with its size and hash.
    void expectEveryRecordProved() const;

    // The same, and that the run counted no file that isn't recorded, and handed out what the files hold.
    void expectTrue(const EmailArchiveRunResult& result) const;

    [[nodiscard]] std::string at(std::string_view relativePath) const {
        return root + "/" + std::string(relativePath);
    }

    const TimeZoneGuard zone{"UTC"};
    const TemporaryHome home;
    const std::string root = home.at("Archive");
    Date now{std::chrono::seconds(1'700'000'000)};
    std::vector<EmailArchiveProgress> reports;

  private:
    int files_ = 0;
};

} // namespace corvane::testing
