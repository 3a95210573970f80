// Turns scanned messages into verified .eml files in an archive folder, and records them in the folder's
// index.
//
// A file is named in the index only after its sync and an uncached read-back that compared every byte. The
// index changes once a run, at its end, and at once; files of a run that died before that are found by the
// next run over the same messages. Nothing in Mail's store is ever changed. One run at a time for an archive.
#pragma once

#include <chrono>
#include <functional>
#include <stop_token>
#include <string>

#include "platform/file_layer.h"
#include "records/archive_records.h"
#include "records/mail_message_record.h"

namespace corvane {

class MailEmailArchiver {
  public:
    using Progress = std::function<void(const EmailArchiveProgress&)>;

    struct Options {
        // How long the place may take for one message before it counts as unresponsive.
        std::chrono::milliseconds placeTimeLimit{25000};
        std::chrono::milliseconds progressInterval{1000};
    };

    // `files` serves everything that is written, and must outlive the process's writes: a write that hangs
    // goes on after the run.
    explicit MailEmailArchiver(platform::FileLayer& files = platform::posixFileLayer())
      : files_(files) {}

    MailEmailArchiver(platform::FileLayer& files, Options options)
      : files_(files)
      , options_(options) {}

    // Runs on the calling thread, which is a background task; a requested stop is looked at between messages
    // only. `progress` is called on this thread. Throws std::system_error or ArchiveError when the folder
    // can't be created or the index not be written; what fails with a message is told in the result.
    EmailArchiveRunResult archive(const MessageList& messages, const std::string& root,
                                  const Progress& progress, const std::stop_token& stop = {});

  private:
    platform::FileLayer& files_;
    Options options_;
};

namespace archive {

// A path in Mail's store at which no file exists.
bool isLikelyNotDownloaded(const FileURL& url);

} // namespace archive

} // namespace corvane
