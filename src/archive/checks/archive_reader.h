// Reads an archive from outside of a run, file by file. Only looks. Each call gives a place that doesn't
// answer `platform::placeLimit` a step and hears a stop. Links aren't followed, and nothing outside of the
// root is ever opened. Used by one thread, a background one.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <stop_token>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "archive/archive_root.h"
#include "platform/files/layers/file_layer.h"
#include "platform/files/sha256.h"
#include "platform/threads/time_limited_worker.h"
#include "records/archived/archive_records.h"
#include "records/archived/file_readings.h"

namespace corvane::archive {

// The stop was requested before the answer came.
class ReadingStopped : public std::runtime_error {
  public:
    ReadingStopped()
      : std::runtime_error("已停止") {}
};

class ArchiveReader {
  public:
    struct Limits {
        std::stop_token stop{};
        std::chrono::nanoseconds ofStep = platform::placeLimit;
    };

    struct File {
        enum class State {
            read,
            tooLarge, // and not read
            absent,   // no regular file below the root, or a path that leads out of it
            failed,   // it can't be read to its end, or a cloud provider has it
        };

        State state = State::failed;
        FileStamp stamp; // of a file that is there
        std::pair<dev_t, ino_t> identity{};
        std::string start; // the first MiB
        platform::Sha256Digest hash{};
        std::int64_t bytesRead = 0;
    };

    struct Mails {
        std::vector<std::string> paths;   // of all .eml files, placeholders of a cloud not among them, sorted
        std::vector<std::string> inCloud; // of those of which only a placeholder is here, sorted
        std::vector<std::string> unreadable; // folders that couldn't be listed
    };

    // `files` has to outlive reads that hung (platform::waitForAbandonedJobs).
    ArchiveReader(platform::FileLayer& files, std::string root, Limits limits);

    // The functions throw ArchiveAccessError when the place doesn't answer, and ReadingStopped.

    // The archive's index. Throws ArchiveAccessError also when there is none, or it can't be used.
    EmailArchiveIndex readIndex();

    struct Index {
        std::optional<EmailArchiveIndex> index; // absent when there is none or it is damaged
        bool isDamaged = false;
    };

    // The same where an archive may have none. Throws ArchiveAccessError when nobody can look.
    Index readIndexIfThere();

    // Reads a file past the cache and hashes it. The path comes from an index: whatever it is.
    File readFile(const std::string& relativePath, std::int64_t largestBytes = INT64_MAX);

    // No file is there, and its folder answered.
    bool isSurelyAbsent(const std::string& relativePath);

    // The .eml files of all folders below the root, hidden ones left out, and with them the "._" files of
    // macOS; of those folders alone that are wanted, by their paths below the root, where that is given.
    Mails listMails(const std::function<bool(const std::string& folder)>& wanted = {});

    // Which file a path leads to; absent where none can be told.
    std::optional<std::pair<dev_t, ino_t>> identityOf(const std::string& relativePath);

  private:
    struct Listing;

    // Runs the job on the worker, and throws unless it has ended.
    template <class Answer>
    Answer limited(std::function<Answer(platform::FileLayer&, platform::JobLimit&)> job);

    platform::FileLayer& files_;
    std::shared_ptr<ArchiveRoot> root_; // of the worker's jobs
    std::string path_;
    Limits limits_;
    platform::TimeLimitedWorker worker_;
};

// One spelling for the relative paths that name one file.
std::string pathKey(std::string_view relativePath);

} // namespace corvane::archive
