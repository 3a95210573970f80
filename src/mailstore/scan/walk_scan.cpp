#include "mailstore/scan/walk_scan.h"

#include <exception>

#include <fmt/format.h>

#include "mailstore/folders/folder_walk.h"
#include "mailstore/scan/attachment_resolution.h"
#include "mailstore/seconds_counter.h"
#include "mime/emlx.h"
#include "mime/header_decoding.h"
#include "mime/mail_date.h"
#include "mime/message_identifiers.h"
#include "platform/files/directory.h"
#include "platform/paths.h"
#include "records/texts/missing_fields.h"
#include "records/texts/preview_placeholders.h"
#include "records/timestamps.h"
#include "text/case.h"

namespace corvane::mailstore {

namespace {

constexpr std::int64_t bytesRead = 524'288;

std::unique_ptr<MailWorkerClient::Session> openSession(const MailWorkerClient& client) {
    try {
        return std::make_unique<MailWorkerClient::Session>(client);
    } catch (const WorkerError&) {
        return nullptr;
    }
}

std::string_view fieldOf(const mime::HeaderMap& header, std::string_view name) {
    const auto field = header.find(name);
    return field == header.end() ? std::string_view() : std::string_view(field->second);
}

std::string decodedField(const mime::HeaderMap& header, std::string_view name, std::string_view missing) {
    std::string value = mime::decodeHeaderValue(fieldOf(header, name));
    return value.empty() ? std::string(missing) : value;
}

void fillFromHeader(MailMessageRecord& record, const mime::HeaderMap& header) {
    record.subject = decodedField(header, "subject", missingSubject);
    record.sender = decodedField(header, "from", missingSender);
    record.recipients = decodedField(header, "to", "");
    if (const auto identifier = mime::normalizedMessageIdentifier(fieldOf(header, "message-id")))
        record.messageIdentifier = SharedText(*identifier);
    const auto references = mime::normalizedReferencedMessageIdentifiers(fieldOf(header, "references"),
                                                                         fieldOf(header, "in-reply-to"));
    if (references) record.referencedMessageIdentifiers.emplace(references->begin(), references->end());
}

} // namespace

WalkScan::WalkScan(const ScanRequest& request, ScanTimingMetrics& timing)
  : request_(request)
  , timing_(timing)
  , client_(request.context.platform)
  , worker_(openSession(client_)) {
    const SecondsCounter elapsed(timing.attachmentIndexSeconds);
    attachments_ = MailAttachmentFileLocator::makeIndex(request.rootPath);
    timing.indexedAttachmentFolders = static_cast<std::int64_t>(attachments_.folderCount());
}

void WalkScan::run(BatchStream& batches, const std::stop_token& stop) {
    batches.flush();
    const SecondsCounter elapsed(timing_.enumerationSeconds);
    const auto visit = [&](const std::string& path, std::string_view name) {
        if (text::equalsIgnoringCase(platform::pathExtension(name), "emlx"))
            batches.addVisited(consumeMessage(FileURL(path), stop));
        return !stop.stop_requested();
    };
    const bool isListed = walkFolder(
        request_.rootPath,
        {.entersFolder = [](const std::string&, std::string_view name) { return name != "Attachments"; },
         .visitsFile = visit});
    if (worker_) worker_->close();
    // A root that is there and can't be listed is one without messages: the lack of permission is told then.
    if (!isListed && !platform::isDirectory(request_.rootPath))
        throw mime::MessageFileError(fmt::format("未能打开文件夹“{}”，因为它不存在。",
                                                 platform::lastPathComponent(request_.rootPath)));
}

std::optional<MailMessageRecord> WalkScan::consumeMessage(const FileURL& file, const std::stop_token& stop) {
    try {
        auto record = parseMessage(file, stop);
        if (record) ++timing_.matchedMessages;
        return record;
    } catch (const std::exception&) {
        return std::nullopt; // one file that can't be read or parsed doesn't stop a scan
    }
}

std::optional<MailMessageRecord> WalkScan::parseMessage(const FileURL& file, const std::stop_token& stop) {
    ++timing_.parsedMessages;
    std::string data;
    {
        const SecondsCounter elapsed(timing_.readMessageSeconds);
        data = mime::readMessagePrefix(file.path().str(), bytesRead);
    }
    const std::string text = mime::decodeEmlx(data);
    const mime::HeaderMap header = mime::headerText(text);
    MailMessageRecord record;
    record.date = mime::parseMailDate(fieldOf(header, "date"));
    if (request_.maximumYear && record.date && localYear(*record.date) > *request_.maximumYear) {
        ++timing_.yearSkippedMessages;
        return std::nullopt;
    }
    record.attachments = resolvedAttachments(
        file, text, {.indexedNames = nullptr, .index = &attachments_, .worker = worker_.get()}, timing_,
        stop);
    if (record.attachments.empty()) {
        ++timing_.noAttachmentMessages;
        return std::nullopt;
    }
    fillFromHeader(record, header);
    record.id = file.path();
    record.fileURL = file;
    record.mailbox = mailboxName(file, request_.rootPath);
    record.isImportedMailbox = isImported(file);
    if (const auto account = accountInfo(file, request_.accountNamesByPrefix)) {
        record.accountIdentifier = account->first;
        record.accountName = account->second;
    }
    record.messageSize = platform::fileSize(file.path().str()).value_or(0);
    record.preview = SharedText(lazyPreviewPlaceholder);
    return record;
}

bool WalkScan::isImported(const FileURL& file) {
    const auto mailbox = mailboxFolder(file);
    if (!mailbox) return false;
    const auto known = importedByMailbox_.find(*mailbox);
    if (known != importedByMailbox_.end()) return known->second;
    return importedByMailbox_.emplace(*mailbox, importedMailboxFlag(file)).first->second;
}

} // namespace corvane::mailstore
