// Saves attachments of archived mail as files of a folder. Nothing that is there is written over, and
// whatever a mail calls its attachments, they stay in that folder. Blocks, on a background thread.
#pragma once

#include <cstdint>
#include <functional>
#include <stop_token>
#include <string>
#include <vector>

#include "archive/attachments/archived_attachment_extractor.h"
#include "platform/files/layers/file_layer.h"

namespace corvane {

struct SavedAttachment {
    std::string entryID;
    std::string name; // as the record has it
    std::string path;
    std::int64_t bytes = 0;
};

struct AttachmentFailure {
    std::string entryID;
    std::string name;
    std::string reason; // for the user
};

struct AttachmentSaving {
    std::vector<SavedAttachment> saved;
    std::vector<AttachmentFailure> failures;
    bool wasCancelled = false;
};

// Called before each attachment and at the end with the numbers done and of all.
using AttachmentProgress = std::function<void(std::int64_t done, std::int64_t total)>;

// Each under its own name in a folder, which is made where it is missing; names that are taken get numbers.
AttachmentSaving saveAttachments(const ArchivedAttachmentExtractor& extractor, platform::FileLayer& files,
                                 const std::vector<AttachmentRef>& attachments, const std::string& folder,
                                 const AttachmentProgress& progress, const std::stop_token& stop);

// One, as a new file, or in a folder that is there. A file that has these very bytes already is the result.
// Throws what the extractor throws, and std::runtime_error with the text for the user where the file can't be
// written or another one has its place.
SavedAttachment saveAttachment(const ArchivedAttachmentExtractor& extractor, platform::FileLayer& files,
                               const AttachmentRef& attachment, const std::string& target,
                               const std::stop_token& stop);

} // namespace corvane
