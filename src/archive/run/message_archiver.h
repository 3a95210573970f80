// Archives one message after the other: reads back what the archive knows of it, writes what is missing and
// proves it, and makes the records. A message is recorded when all of it is in its place, or not at all.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "archive/archive_naming.h"
#include "archive/destination/archive_destination.h"
#include "archive/destination/index_records.h"
#include "archive/run/message_copies.h"
#include "archive/run/message_plan.h"
#include "records/archived/archive_records.h"
#include "records/mail_message_record.h"
#include "text/shared_text.h"

namespace corvane::archive {

// What was done for a message. It holds as long as the folders are where they were. Of one that failed
// nothing is recorded or counted; what was read of the files that the archive has of it holds all the same.
struct HandledMessage {
    std::optional<std::string> failure; // for the user
    std::int64_t written = 0;           // files
    std::int64_t inPlace = 0;
    std::int64_t bytes = 0;           // written
    std::vector<std::size_t> records; // new ones, by their positions in the index
    std::vector<ArchivedFileReading> readings;
    std::vector<WrittenFolder> folders;
    std::optional<std::string> variantWarning;
};

class MessageArchiver {
  public:
    // All must outlive it.
    MessageArchiver(ArchiveDestination& destination, IndexRecords& records, const std::function<Date()>& now);

    // Whether an intact file of the archive is there for a message that no longer has a file of its own.
    // Throws ArchiveError when nobody could look.
    bool holds(const MailMessageRecord& message);

    // There has to be a copy. The readings of the copies get a hash of the body where only that tells that
    // the archive holds them, or says that it doesn't. Throws ArchiveAccessError when the archive has gone.
    HandledMessage archive(const MailMessageRecord& message, MessageCopies& copies);

    struct Times {
        std::chrono::duration<double> writing{};
        std::chrono::duration<double> verifying{};
        std::chrono::duration<double> grouping{};
    };

    [[nodiscard]] const Times& times() const noexcept { return times_; }

  private:
    class Work;

    std::vector<KnownMail> lookAtKnown(std::string_view baseID);
    bool isOnlyOneAt(const ArchivedEmailRecord& record);
    PlacedFile place(const MessageBytes& message, const std::string& relativePath);

    ArchiveDestination& destination_;
    IndexRecords& records_;
    const std::function<Date()>& now_;
    ArchivePaths paths_;
    std::optional<SharedTextSet> sharedPlaces_; // that several records name; found when first needed
    Times times_;
};

} // namespace corvane::archive
