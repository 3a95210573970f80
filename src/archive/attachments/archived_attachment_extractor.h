// Pulls attachments out of archived mail, which doesn't keep them apart. The mail is brought back from the
// cloud first where that is needed. Blocks, on a background thread; a copy for each.
#pragma once

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <stop_token>
#include <string>
#include <utility>

#include "archive/attachments/attachment_cache.h"
#include "archive/opening/archived_cloud_file_opener.h"
#include "platform/platform.h"
#include "records/archived/archive_records.h"

namespace corvane {

// One attachment of an archived mail.
struct AttachmentRef {
    ArchivedEntry entry;
    std::string name;           // as the record has it
    std::size_t occurrence = 0; // of those of this name
};

class ArchivedAttachmentExtractor {
  public:
    // Why there is no attachment; what() is the text for the user.
    class ExtractionError : public std::runtime_error {
      public:
        enum class Kind { missingAttachment, unavailable, missing };

        explicit ExtractionError(Kind kind, const std::string& name = {});

        [[nodiscard]] Kind kind() const noexcept { return kind_; }

      private:
        Kind kind_;
    };

    // The platform has to outlive looks that hung (platform::waitForAbandonedJobs).
    ArchivedAttachmentExtractor(const platform::Platform& platform,
                                std::shared_ptr<archive::AttachmentCache> cache,
                                ArchivedCloudFileOpener::Limits limits = {})
      : platform_(platform)
      , cache_(std::move(cache))
      , limits_(limits) {}

    // The bytes, at most 200 MiB. The functions throw ExtractionError, WorkerError and OpeningCancelled.
    [[nodiscard]] std::string data(const AttachmentRef& attachment, const std::stop_token& stop = {}) const;

    // A file with them in the cache, where it is used again within this run. Throws std::system_error as
    // well, when it can't be written.
    [[nodiscard]] std::string preparedAttachment(const AttachmentRef& attachment,
                                                 const std::stop_token& stop = {}) const;

  private:
    [[nodiscard]] std::string ensureLocal(const ArchivedEntry& entry, const std::stop_token& stop) const;

    const platform::Platform& platform_;
    std::shared_ptr<archive::AttachmentCache> cache_;
    ArchivedCloudFileOpener::Limits limits_;
};

} // namespace corvane
