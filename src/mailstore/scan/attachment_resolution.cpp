#include "mailstore/scan/attachment_resolution.h"

#include <algorithm>
#include <array>
#include <unordered_set>

#include "mailstore/seconds_counter.h"
#include "mime/attachment_names.h"
#include "text/case.h"
#include "text/regex.h"

namespace corvane::mailstore {

namespace {

constexpr std::size_t itemsLookedAt = 200;
constexpr std::int64_t bytesForWorker = 8'388'608;

MailAttachmentRecord attachment(const std::string& name, std::string_view contentType) {
    return {.id = Uuid::random(),
            .fileName = name,
            .mimeType = mime::mimeTypeGuess(name, contentType),
            .estimatedSize = {},
            .sourceFileURL = {}};
}

std::vector<MailAttachmentRecord> fromIndexedNames(const std::vector<SharedText>& names) {
    std::vector<MailAttachmentRecord> attachments;
    for (const SharedText& name : names) {
        if (auto found = attachmentFromName(name, {})) attachments.push_back(std::move(*found));
    }
    return attachments;
}

std::vector<MailAttachmentRecord> fromStoredFiles(const FileURL& messageFile,
                                                  const MailAttachmentFileLocator::Index* index,
                                                  ScanTimingMetrics& timing) {
    const SecondsCounter elapsed(timing.externalAttachmentLookupSeconds);
    const auto files = index != nullptr
                           ? index->attachmentFiles(messageFile)
                           : MailAttachmentFileLocator::attachmentFiles(messageFile, itemsLookedAt);
    timing.externalAttachmentHits += static_cast<std::int64_t>(files.size());
    std::vector<MailAttachmentRecord> attachments;
    std::unordered_set<std::string> seen;
    for (const StoredAttachment& file : files) {
        auto found = attachmentFromFile(file);
        if (found && seen.insert(text::lowercased(found->fileName)).second)
            attachments.push_back(std::move(*found));
    }
    return attachments;
}

// Nullopt when the worker couldn't answer.
std::optional<std::vector<MailAttachmentRecord>> fromWorker(const FileURL& messageFile,
                                                            MailWorkerClient::Session& worker,
                                                            ScanTimingMetrics& timing,
                                                            const std::stop_token& stop) {
    ++timing.pythonAttachmentRequests;
    const SecondsCounter elapsed(timing.pythonAttachmentSeconds);
    std::vector<MailAttachmentRecord> attachments;
    try {
        for (const auto& item : worker.attachments(messageFile, bytesForWorker, stop)) {
            auto found = attachmentFromName(item.fileName, item.contentType.value_or(""));
            if (!found) continue;
            if (item.estimatedSize.value_or(-1) >= 0) found->estimatedSize = item.estimatedSize;
            attachments.push_back(std::move(*found));
        }
    } catch (const WorkerError&) {
        return std::nullopt;
    }
    return attachments;
}

} // namespace

std::optional<MailAttachmentRecord> attachmentFromName(std::string_view writtenName,
                                                       std::string_view contentType) {
    const std::string name = mime::cleanAttachmentName(writtenName);
    if (name.empty() || mime::hasImageExtension(name)) return std::nullopt;
    return attachment(name, contentType);
}

std::optional<MailAttachmentRecord> attachmentFromFile(const StoredAttachment& file) {
    const std::string name = mime::cleanAttachmentName(file.url.lastPathComponent());
    if (name.empty()) return std::nullopt;
    if (mime::hasImageExtension(name) && file.size.value_or(0) < mime::smallestImageAttachmentBytes)
        return std::nullopt;
    MailAttachmentRecord stored = attachment(name, {});
    stored.estimatedSize = file.size;
    stored.sourceFileURL = file.url;
    return stored;
}

std::vector<MailAttachmentRecord> resolvedAttachments(const FileURL& messageFile, std::string_view mimeText,
                                                      const AttachmentSources& sources,
                                                      ScanTimingMetrics& timing,
                                                      const std::stop_token& stop) {
    std::vector<MailAttachmentRecord> found;
    if (sources.indexedNames != nullptr) found = fromIndexedNames(*sources.indexedNames);
    if (found.empty()) found = fromStoredFiles(messageFile, sources.index, timing);
    if (!found.empty()) return found;
    if (!mime::mayContainEmbeddedAttachment(mimeText)) {
        ++timing.markerSkippedMessages;
        return {};
    }
    ++timing.embeddedAttachmentCandidates;
    if (sources.worker != nullptr) {
        if (auto answer = fromWorker(messageFile, *sources.worker, timing, stop)) return std::move(*answer);
    }
    const SecondsCounter elapsed(timing.nativeAttachmentExtractSeconds);
    return extractAttachments(mimeText);
}

std::vector<MailAttachmentRecord> extractAttachments(std::string_view mimeText) {
    static const std::array<text::Regex, 2> patterns = {
        text::Regex(R"re((?i)filename\*?=(?:UTF-8''|"?)([^";\r\n]+))re"),
        text::Regex(R"re((?i)name\*?=(?:UTF-8''|"?)([^";\r\n]+))re")};
    std::vector<MailAttachmentRecord> attachments;
    std::unordered_set<std::string> seen;
    for (const text::Regex& pattern : patterns) {
        for (const auto& match : pattern.allMatches(mimeText)) {
            auto found = attachmentFromName(match.group(1, mimeText), {});
            if (found && seen.insert(found->fileName.str()).second) attachments.push_back(std::move(*found));
        }
    }
    return attachments;
}

} // namespace corvane::mailstore
