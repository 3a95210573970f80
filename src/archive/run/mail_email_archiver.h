// The archive run: copies messages out of Mail's store into an archive folder as .eml files, proves each on
// the storage, and records it in the archive's index. Mail's store is only read.
//
// Between two consistent states of the index the folder may hold files that no record names, and never a
// record without its file: the index is replaced once, at the end. A run that was killed loses nothing; the
// next one with the same messages finds the files in place. One run at a time for each archive: a second one,
// also of another process, is refused.
#pragma once

#include <chrono>
#include <functional>
#include <stop_token>
#include <string>

#include "platform/files/layers/file_layer.h"
#include "platform/threads/time_limited_worker.h"
#include "records/archived/archive_records.h"
#include "records/mail_message_record.h"

namespace corvane {

struct ArchiverOptions {
    // How long a step of a write may take before its message is given up.
    std::chrono::nanoseconds timeLimit = platform::placeLimit;
    std::function<std::chrono::steady_clock::time_point()> clock = std::chrono::steady_clock::now;
    std::function<Date()> now;                          // empty: the system's
    std::function<void(const std::string&)> markHidden; // empty: no file is hidden
    // Asks the cloud provider for a file that it keeps elsewhere; true when that is on its way. Empty: nobody
    // can.
    std::function<bool(const std::string& path)> bringFromCloud;
};

class MailEmailArchiver {
  public:
    // `files` has to outlive writes that hung (platform::waitForAbandonedJobs).
    explicit MailEmailArchiver(platform::FileLayer& files = platform::posixFileLayer(),
                               ArchiverOptions options = {});

    // Blocks; on a background thread only. `root` is made when it is missing. `progress` is called on this
    // thread, at most once a second in the loop. A stop is looked at between messages, and what was done
    // until then is saved. Failures of single messages are in the result; throws ArchiveAccessError when the
    // root can't be made, another run has it, or the index can't be saved.
    EmailArchiveRunResult archive(const MessageList& messages, const std::string& root,
                                  const std::function<void(const EmailArchiveProgress&)>& progress,
                                  const std::stop_token& stop = {});

  private:
    platform::FileLayer& files_;
    ArchiverOptions options_;
};

namespace archive {

// Whether the file lies in Mail's store and isn't there: Mail hasn't downloaded the message.
bool isLikelyNotDownloaded(const FileURL& url);

} // namespace archive

} // namespace corvane
