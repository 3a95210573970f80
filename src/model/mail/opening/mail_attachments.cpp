#include "model/mail/opening/mail_attachments.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <unordered_map>

#include "archive/attachments/attachment_data.h"
#include "archive/portable_names.h"
#include "mailstore/folders/attachment_file_locator.h"
#include "mailstore/scan/attachment_resolution.h"
#include "platform/files/directory.h"
#include "platform/files/writing/durable_file.h"
#include "platform/paths.h"
#include "platform/threads/limited_answer.h"
#include "worker/mail_worker_client.h"
#include "worker/worker_session.h"

namespace corvane {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t entriesLookedAt = 200;
constexpr std::int64_t bytesForSizes = 8'388'608;

// Where Mail keeps it beside the message, under the name that the record has. Which of several of one name a
// file is can't be told.
AttachmentPlace storedPlace(const MailAttachment& attachment, const std::string& messageFile) {
    if (attachment.occurrence > 0) return {};
    for (const StoredAttachment& stored :
         MailAttachmentFileLocator::attachmentFiles(FileURL(messageFile), entriesLookedAt)) {
        const auto record = mailstore::attachmentFromFile(stored);
        if (record && record->fileName == attachment.name)
            return {.path = stored.url.path().str(), .isOwnFile = true, .bytes = stored.size};
    }
    return {};
}

std::error_code copiedFile(const std::string& from, const std::string& to) {
    std::error_code error;
    fs::copy_file(from, to, error);
    if (!error) fs::permissions(to, fs::perms::owner_read | fs::perms::owner_write, error);
    return error;
}

std::optional<std::string> dataIn(const platform::Platform& platform, const MailAttachment& attachment,
                                  const AttachmentPlace& place, const std::stop_token& stop) {
    if (place.isOwnFile) return std::nullopt;
    auto data = archive::attachmentData(platform, {place.path, attachment.name, attachment.occurrence}, stop);
    if (!data) throw WorkerError(WorkerError::Kind::invalidResponse, attachment.name);
    return data;
}

} // namespace

std::vector<MailAttachment> mailAttachments(const MailMessageRecord& message, std::size_t limit) {
    std::vector<std::string> messageFiles;
    for (const FileURL& file : message.allMessageFileURLs()) messageFiles.push_back(file.path().str());
    std::vector<MailAttachment> attachments;
    std::unordered_map<std::string, std::size_t> seen;
    for (const MailAttachmentRecord& record : message.attachments) {
        if (attachments.size() == limit) break;
        std::string name = record.fileName.str();
        const std::size_t occurrence = seen[name]++;
        attachments.push_back({.name = std::move(name),
                               .occurrence = occurrence,
                               .knownFile = record.sourceFileURL ? record.sourceFileURL->path().str() : "",
                               .messageFiles = messageFiles});
    }
    return attachments;
}

namespace {

AttachmentPlace placeFound(const MailAttachment& attachment) {
    if (platform::isRegularFile(attachment.knownFile))
        return {.path = attachment.knownFile,
                .isOwnFile = true,
                .bytes = platform::fileSize(attachment.knownFile)};
    AttachmentPlace inMessage;
    for (const std::string& file : attachment.messageFiles) {
        if (!platform::isRegularFile(file)) continue;
        if (AttachmentPlace stored = storedPlace(attachment, file); stored.isOwnFile) return stored;
        if (inMessage.path.empty()) inMessage.path = file;
    }
    return inMessage;
}

// The first that is there; empty for none, and where nobody answers in time.
std::string firstFile(const std::vector<std::string>& files, const std::stop_token& stop) {
    const auto found = platform::limitedAnswer<std::string>(
        platform::placeLimit,
        [files](platform::JobLimit&) {
            const auto file = std::ranges::find_if(files, &platform::isRegularFile);
            return file == files.end() ? std::string() : *file;
        },
        stop);
    return found.value_or("");
}

} // namespace

std::optional<AttachmentPlace> placeOf(const MailAttachment& attachment, const std::stop_token& stop) {
    return platform::limitedAnswer<AttachmentPlace>(
        platform::placeLimit, [attachment](platform::JobLimit&) { return placeFound(attachment); }, stop);
}

std::vector<std::optional<std::int64_t>> attachmentSizes(const platform::Platform& platform,
                                                         const std::vector<MailAttachment>& attachments,
                                                         const std::stop_token& stop) {
    std::vector<std::optional<std::int64_t>> sizes(attachments.size());
    if (attachments.empty()) return sizes;
    const std::string file = firstFile(attachments.front().messageFiles, stop);
    if (file.empty()) return sizes;
    try {
        const MailWorkerClient client(platform);
        MailWorkerClient::Session session(client);
        std::unordered_map<std::string, std::vector<std::optional<std::int64_t>>> byName;
        for (const auto& item : session.attachments(FileURL(file), bytesForSizes, stop)) {
            if (const auto record = mailstore::attachmentFromName(item.fileName, {}))
                byName[record->fileName.str()].push_back(item.estimatedSize);
        }
        for (std::size_t row = 0; row < attachments.size(); ++row) {
            const auto found = byName.find(attachments[row].name);
            if (found != byName.end() && attachments[row].occurrence < found->second.size())
                sizes[row] = found->second[attachments[row].occurrence];
        }
    } catch (const WorkerError&) {
        return sizes;
    }
    return sizes;
}

std::string copyAttachment(const platform::Platform& platform, const MailAttachment& attachment,
                           const std::string& folder, const std::stop_token& stop) {
    const auto found = placeOf(attachment, stop);
    if (!found || found->path.empty())
        throw std::system_error(found ? ENOENT : ETIMEDOUT, std::generic_category(), attachment.name);
    const AttachmentPlace& place = *found;
    const auto data = dataIn(platform, attachment, place, stop);
    const std::string name = archive::portableFileName(
        place.isOwnFile ? platform::lastPathComponent(place.path) : std::string_view(attachment.name));
    archive::UniqueNames names;
    while (true) {
        std::string path = platform::joinPath(folder, names.next(folder, name));
        const std::error_code error = data ? platform::writeNewFile(platform::posixFileLayer(), path, *data)
                                           : copiedFile(place.path, path);
        if (!error) return path;
        if (error.value() != EEXIST) throw std::system_error(error, path);
    }
}

} // namespace corvane
