// The attachments of one message out of what may tell of them, cheapest first: names in the index, files that
// Mail stores beside the message, the worker's parse, and a search in the message's own text. Nothing here
// fails.
#pragma once

#include <optional>
#include <stop_token>
#include <string_view>
#include <vector>

#include "mailstore/folders/attachment_file_locator.h"
#include "mailstore/scan/scan_timing_metrics.h"
#include "records/mail_message_record.h"
#include "worker/mail_worker_client.h"
#include "worker/worker_session.h"

namespace corvane::mailstore {

// Each source is absent where it isn't there to be asked.
struct AttachmentSources {
    const std::vector<SharedText>* indexedNames = nullptr;
    const MailAttachmentFileLocator::Index* index =
        nullptr; // without it a message's own places are looked at
    MailWorkerClient::Session* worker = nullptr;
};

// Blocks on the disk and on the worker. The first source that has any decides; the worker also where it finds
// none.
std::vector<MailAttachmentRecord> resolvedAttachments(const FileURL& messageFile, std::string_view mimeText,
                                                      const AttachmentSources& sources,
                                                      ScanTimingMetrics& timing,
                                                      const std::stop_token& stop = {});

// The names in a message's text (RFC 2183, RFC 2045), each once. Pure, linear.
std::vector<MailAttachmentRecord> extractAttachments(std::string_view mimeText);

// Whether a message's text has any mark of an attachment. Pure.
bool mayContainEmbeddedAttachment(std::string_view mimeText);

// A record by a name alone; nothing for an empty name and for pictures. `contentType` is empty when unknown.
std::optional<MailAttachmentRecord> attachmentFromName(std::string_view writtenName,
                                                       std::string_view contentType);

// A record of a stored file; nothing for an empty name and for small pictures.
std::optional<MailAttachmentRecord> attachmentFromFile(const StoredAttachment& file);

} // namespace corvane::mailstore
