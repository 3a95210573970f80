// The attachments of mail that isn't archived yet, or not looked at as archived: where each lies in Mail's
// store, and copies of them. Mail's own files are only read. All blocks, on a background thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include "platform/platform.h"
#include "records/mail_message_record.h"

namespace corvane {

struct MailAttachment {
    std::string name;                      // as the scan's record has it
    std::size_t occurrence = 0;            // of those of this name
    std::string knownFile;                 // that Mail keeps of it; empty where the scan has found none
    std::vector<std::string> messageFiles; // each holds the message

    friend bool operator==(const MailAttachment&, const MailAttachment&) = default;
};

// Those of a message in the order of its record, at most so many of them.
std::vector<MailAttachment> mailAttachments(const MailMessageRecord& message, std::size_t limit);

// Where an attachment can be had from.
struct AttachmentPlace {
    std::string path;       // its own file, else that of its message; empty where neither is there
    bool isOwnFile = false; // the path is that of the attachment and of nothing else
    std::optional<std::int64_t> bytes{}; // of its own file
};

// Nullopt where a file's place doesn't answer within the limit of every look, and after a stop.
std::optional<AttachmentPlace> placeOf(const MailAttachment& attachment, const std::stop_token& stop = {});

// In bytes, of attachments of one message; nullopt where it can't be told. An estimate where the message is
// too large to be read as a whole. Starts the mail worker.
std::vector<std::optional<std::int64_t>> attachmentSizes(const platform::Platform& platform,
                                                         const std::vector<MailAttachment>& attachments,
                                                         const std::stop_token& stop);

// Makes a copy in the folder, for this user alone, under a name that nothing there has, and returns its path.
// Throws std::runtime_error: WorkerError with the user's text where the attachment can't be taken out of its
// message, std::system_error where a file can't be read or written.
std::string copyAttachment(const platform::Platform& platform, const MailAttachment& attachment,
                           const std::string& folder, const std::stop_token& stop);

} // namespace corvane
