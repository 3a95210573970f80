// Pulling one attachment out of an archived message.
#pragma once

#include <stdexcept>
#include <stop_token>
#include <string>

#include "platform/platform.h"
#include "records/archived/archive_records.h"

namespace corvane {

// Why there is no attachment; what() is the text for the user.
class ExtractionError : public std::runtime_error {
  public:
    enum class Kind { missingAttachment, unavailable, missing };

    explicit ExtractionError(Kind kind, const std::string& name = {});

    [[nodiscard]] Kind kind() const noexcept { return kind_; }

  private:
    Kind kind_;
};

// The bytes of the attachment with that name, at most 200 MiB. Blocks, for 4 seconds at the most. Throws
// ExtractionError and WorkerError.
std::string archivedAttachmentData(const platform::Platform& platform, const ArchivedEntry& entry,
                                   const std::string& name, const std::stop_token& stop = {});

} // namespace corvane
