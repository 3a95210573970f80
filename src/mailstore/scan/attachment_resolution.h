// The attachments of one message out of four sources, cheapest first: names in the index, files that
// Mail stores beside the message, the worker's parse, and a search in the message's own text. A source that
// fails is passed over.
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

// A source is null when there is none.
struct AttachmentSources {
    const std::vector<SharedText>* indexedNames = nullptr;
    const MailAttachmentFileLocator::Index* index =
        nullptr; // without it a message's own places are looked at
    MailWorkerClient::Session* worker = nullptr;
};

// Blocks on the disk and on the worker. The first source that has any decides; an answer of the worker
// decides even when it holds none. A stop ends the wait for the worker, which then counts as failed.
std::vector<MailAttachmentRecord> resolvedAttachments(const FileURL& messageFile, std::string_view mimeText,
                                                      const AttachmentSources& sources,
                                                      ScanTimingMetrics& timing,
                                                      const std::stop_token& stop = {});

// The names in a message's text (RFC 2183, RFC 2045), each once. Pure, linear.
std::vector<MailAttachmentRecord> extractAttachments(std::string_view mimeText);

// A record by a name alone; nullopt for an empty name and for pictures. `contentType` is empty when unknown.
std::optional<MailAttachmentRecord> attachmentFromName(std::string_view writtenName,
                                                       std::string_view contentType);

// A record of a stored file; nullopt for an empty name and for small pictures.
std::optional<MailAttachmentRecord> attachmentFromFile(const StoredAttachment& file);

} // namespace corvane::mailstore
