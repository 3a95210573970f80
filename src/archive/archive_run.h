// The state of one run of the archiver: the growing index, the counters and the lists. One thread; only the
// jobs at the place run on another one.
#pragma once

#include <chrono>
#include <optional>
#include <set>
#include <string>
#include <unordered_set>
#include <vector>

#include "archive/archive_naming.h"
#include "archive/mail_email_archiver.h"
#include "archive/message_extraction.h"
#include "archive/time_limited_worker.h"

namespace corvane::archive {

class ArchiveRun {
  public:
    ArchiveRun(platform::FileLayer& files, std::string root, std::chrono::milliseconds placeTimeLimit);

    // Creates the root and reads its index. Throws std::system_error or ArchiveError.
    void prepare();

    // Archives one message with all its variants; what fails is noted.
    void add(const MailMessageRecord& message);

    // Writes the index and flushes the folders. Throws std::system_error or ArchiveError.
    void finish();

    [[nodiscard]] EmailArchiveRunResult& result() { return result_; }

  private:
    using Clock = std::chrono::steady_clock;

    struct Times {
        Clock::duration read{};
        Clock::duration write{};
        Clock::duration verify{};
        Clock::duration find{};
        Clock::duration group{};
        Clock::duration flush{};
    };

    [[nodiscard]] std::vector<StoredCopy> readCopies(const std::vector<FileURL>& urls);
    void addVariant(const MailMessageRecord& message, const std::vector<StoredCopy>& group,
                    std::size_t number, std::size_t groupCount, std::size_t copyCount);
    bool place(const StoredCopy& copy, const std::string& relativePath);
    void fail(const MailMessageRecord& message, std::string reason);
    void keepDamagedIndex();
    void atPlace(const std::function<void()>& work);
    void printTimes() const;

    platform::FileLayer& files_;
    std::string root_;
    std::string indexPath_;
    TimeLimitedWorker worker_;
    EmailArchiveIndex index_;
    std::unordered_set<std::string> knownIDs_;
    UsedPaths usedPaths_;
    std::set<std::string> createdFolders_;
    EmailArchiveRunResult result_;
    std::size_t copiesRead_ = 0;
    Times times_;
    Clock::time_point loopStart_ = Clock::now();
};

} // namespace corvane::archive
