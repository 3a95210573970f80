#include "archive/mail_email_archiver.h"

#include <algorithm>
#include <exception>
#include <utility>

#include <fmt/format.h>

#include "archive/archive_destination.h"
#include "archive/archive_error.h"
#include "archive/archive_naming.h"
#include "archive/message_extraction.h"
#include "mime/header_decoding.h"
#include "platform/files/directory.h"
#include "platform/paths.h"
#include "platform/stop_watch.h"
#include "records/logs/console_log.h"
#include "records/stable_id.h"
#include "records/stores/archive_index_file.h"
#include "records/timestamps.h"

namespace corvane {

namespace {

using archive::ArchiveDestination;
using archive::BodyGroup;
using archive::MessageBytes;
using archive::PlacedFile;
using platform::StopWatch;
using Seconds = StopWatch::Seconds;

// Real mail never comes near; a lying sparse file must not take all memory.
constexpr std::int64_t maximumSourceBytes = std::int64_t{4} << 30;

constexpr auto progressInterval = std::chrono::seconds(1);

struct RunTimes {
    Seconds loop{};
    Seconds reading{};
    Seconds writing{};
    Seconds verifying{};
    Seconds findingCopies{};
    Seconds grouping{};
    Seconds syncing{};

    [[nodiscard]] Seconds other() const {
        return std::max(Seconds::zero(), loop - reading - writing - verifying - findingCopies - grouping);
    }
};

struct Copies {
    std::int64_t count = 0;
    std::vector<BodyGroup> groups;
};

std::vector<std::string> existingFiles(const MailMessageRecord& message) {
    std::vector<std::string> paths;
    for (const FileURL& url : message.allMessageFileURLs()) {
        std::string path = url.path().str();
        if (platform::fileExists(path)) paths.push_back(std::move(path));
    }
    return paths;
}

std::optional<MessageBytes> readMessage(const std::string& path) {
    auto file = platform::readFile(path, maximumSourceBytes);
    if (!file) return std::nullopt;
    return MessageBytes::fromEmlx(std::move(*file));
}

std::string damagedIndexName(Date now) {
    std::string stamp = formatTimestamp(now);
    std::erase_if(stamp, [](char character) { return character == '-' || character == ':'; });
    return fmt::format(".archive-index-damaged-{}.json", stamp);
}

// One run, from its start to its result.
class ArchiveRun {
  public:
    ArchiveRun(platform::FileLayer& files, const ArchiverOptions& options, const MessageList& messages,
               const std::string& root, const std::function<void(const EmailArchiveProgress&)>& progress)
      : options_(options)
      , messages_(messages)
      , progress_(progress)
      , destination_(files, root, options.timeLimit) {
        result_.indexURL = FileURL(SharedText(destination_.indexPath()));
    }

    EmailArchiveRunResult run(const std::stop_token& stop) {
        destination_.createRoot();
        destination_.lock();
        loadIndex();
        report(0, std::nullopt,
               messages_.empty() ? "没有要归档的邮件"
                                 : fmt::format("准备归档 {} 封邮件...", messages_.size()));
        archiveMessages(stop);
        finish();
        return std::move(result_);
    }

  private:
    void loadIndex();
    void archiveMessages(const std::stop_token& stop);
    void finish();
    void archiveMessage(const MailMessageRecord& message);
    Copies readCopies(const std::vector<std::string>& paths);
    void archiveVariants(const MailMessageRecord& message, const std::string& identity, const Copies& copies);
    void archiveVariant(const MailMessageRecord& message, SharedText id, std::string_view suffix,
                        const MessageBytes& chosen, const Copies& copies);
    std::pair<std::string, PlacedFile> placeFile(const MailMessageRecord& message, std::string_view suffix,
                                                 const MessageBytes& chosen);
    void fail(const MailMessageRecord& message, std::string reason);
    void report(std::size_t completed, std::optional<std::string> subject, std::string status);
    void logTimes() const;

    [[nodiscard]] Date now() const { return options_.now ? options_.now() : currentTimestamp(); }

    const ArchiverOptions& options_;
    const MessageList& messages_;
    const std::function<void(const EmailArchiveProgress&)>& progress_;
    ArchiveDestination destination_;
    EmailArchiveIndex index_;
    bool isOldIndexDamaged_ = false;
    SharedTextSet knownIDs_;
    archive::ArchivePaths paths_;
    EmailArchiveRunResult result_;
    std::int64_t copiesRead_ = 0;
    RunTimes times_;
};

void ArchiveRun::loadIndex() {
    if (auto known = readArchiveIndex(destination_.indexPath())) {
        index_ = std::move(*known);
    } else {
        isOldIndexDamaged_ = platform::fileExists(destination_.indexPath());
        const Date start = now();
        index_ = {.createdAt = start, .updatedAt = start, .records = {}};
    }
    for (const ArchivedEmailRecord& record : index_.records) {
        knownIDs_.insert(record.id);
        paths_.markUsed(record.emlRelativePath);
    }
}

void ArchiveRun::archiveMessages(const std::stop_token& stop) {
    const StopWatch watch;
    std::optional<std::chrono::steady_clock::time_point> lastProgress;
    for (std::size_t position = 0; position < messages_.size(); ++position) {
        if (stop.stop_requested()) {
            result_.wasCancelled = true;
            break;
        }
        const MailMessageRecord& message = messages_[position];
        const auto moment = options_.clock();
        if (!lastProgress || moment - *lastProgress >= progressInterval) {
            report(position, message.subject.str(), fmt::format("正在归档：{}", message.subject));
            lastProgress = moment;
        }
        archiveMessage(message);
        ++result_.triedCount;
    }
    times_.loop = watch.elapsed();
}

void ArchiveRun::archiveMessage(const MailMessageRecord& message) {
    const std::string identity = stableID(message);
    if (knownIDs_.contains(std::string_view(identity))) {
        ++result_.skippedAlreadyArchived;
        return;
    }
    const StopWatch watch;
    const std::vector<std::string> files = existingFiles(message);
    times_.findingCopies += watch.elapsed();
    if (files.empty()) {
        fail(message,
             archive::isLikelyNotDownloaded(message.fileURL)
                 ? "邮件未下载到本地。请在 Mail->设置->账户，将「下载附件」改为「全部」并同步后重试。"
                 : "邮件文件不存在，可能已被 Mail 重新索引，请重新扫描后再试。");
        return;
    }
    const Copies copies = readCopies(files);
    if (copies.count == 0) {
        fail(message, "无法读取邮件内容，请重新扫描后再试。");
        return;
    }
    try {
        archiveVariants(message, identity, copies);
    } catch (const ArchiveError& error) {
        fail(message, error.what());
    } catch (const std::exception& error) {
        consoleLine(fmt::format("[archive] {}: {}", message.id, error.what()));
        fail(message, ArchiveError(ArchiveError::Case::writeFailed).what());
    }
}

// Grouped as they come, so that copies with the same body are never in memory together for long.
Copies ArchiveRun::readCopies(const std::vector<std::string>& paths) {
    Copies copies;
    for (const std::string& path : paths) {
        const StopWatch readWatch;
        auto message = readMessage(path);
        times_.reading += readWatch.elapsed();
        if (!message) continue;
        const StopWatch groupWatch;
        groupByBody(std::move(*message), copies.groups);
        times_.grouping += groupWatch.elapsed();
        ++copies.count;
    }
    copiesRead_ += copies.count;
    return copies;
}

void ArchiveRun::archiveVariants(const MailMessageRecord& message, const std::string& identity,
                                 const Copies& copies) {
    if (copies.groups.size() == 1) {
        archiveVariant(message, identity, "", copies.groups.front().largest, copies);
        return;
    }
    for (std::size_t number = 1; number <= copies.groups.size(); ++number) {
        const std::string id = fmt::format("{}#v{}", identity, number);
        // An earlier run that failed at one variant has recorded those before it.
        if (knownIDs_.contains(std::string_view(id))) {
            ++result_.skippedAlreadyArchived;
            continue;
        }
        archiveVariant(message, id, fmt::format("（变体{}）", number), copies.groups[number - 1].largest,
                       copies);
    }
    result_.variantWarnings.push_back(
        fmt::format("{}（{} 个内容不一致的副本，已全部保留）", message.subject, copies.groups.size()));
}

void ArchiveRun::archiveVariant(const MailMessageRecord& message, SharedText id, std::string_view suffix,
                                const MessageBytes& chosen, const Copies& copies) {
    auto ccRecipients = mime::decodedHeaderField("cc", chosen.bytes);
    const auto [path, placed] = placeFile(message, suffix, chosen);
    const auto size = static_cast<std::int64_t>(chosen.bytes.size());
    ArchivedEmailRecord record{
        .id = std::move(id),
        .messageIdentifier = message.messageIdentifier,
        .referencedMessageIdentifiers = message.referencedMessageIdentifiers,
        .subject = message.subject,
        .sender = message.sender,
        .recipients = message.recipients,
        .ccRecipients = std::move(ccRecipients),
        .date = message.date,
        .mailbox = message.mailbox,
        .accountIdentifier = message.accountIdentifier,
        .accountName = message.accountName,
        .sizeBytes = size,
        .attachmentNames = {},
        .emlRelativePath = path,
        .archivedAt = now(),
        .sourceCopyCount = copies.count,
        .sourceCopiesIdentical = copies.groups.size() == 1,
    };
    for (const MailAttachmentRecord& attachment : message.attachments) {
        record.attachmentNames.push_back(attachment.fileName);
    }
    knownIDs_.insert(record.id);
    index_.records.push_back(std::move(record));
    if (placed.outcome == PlacedFile::Outcome::written) {
        ++result_.archivedCount;
        result_.archivedBytes += size;
    } else {
        ++result_.skippedAlreadyArchived;
    }
}

std::pair<std::string, PlacedFile>
ArchiveRun::placeFile(const MailMessageRecord& message, std::string_view suffix, const MessageBytes& chosen) {
    while (true) {
        std::string path = paths_.uniqueRelativePath(message, suffix);
        const StopWatch watch;
        const PlacedFile placed = destination_.writePOSIX(chosen, path);
        times_.verifying += placed.verifying;
        times_.writing += watch.elapsed() - placed.verifying;
        if (placed.outcome != PlacedFile::Outcome::nameTaken) return {std::move(path), placed};
    }
}

void ArchiveRun::finish() {
    const StopWatch folderWatch;
    destination_.syncFolders();
    times_.syncing = folderWatch.elapsed();
    index_.updatedAt = now();
    destination_.saveIndex(encodeArchiveIndex(index_),
                           isOldIndexDamaged_ ? damagedIndexName(index_.updatedAt) : std::string(),
                           options_.markHidden);
    const StopWatch rootWatch;
    destination_.syncRoot();
    times_.syncing += rootWatch.elapsed();
    logTimes();
    report(messages_.size(), std::nullopt, "归档完成");
}

void ArchiveRun::fail(const MailMessageRecord& message, std::string reason) {
    ++result_.failedCount;
    result_.failures.push_back({Uuid::random(), message.subject.str(), message.fileURL, std::move(reason)});
}

void ArchiveRun::report(std::size_t completed, std::optional<std::string> subject, std::string status) {
    if (!progress_) return;
    progress_({static_cast<std::int64_t>(completed), static_cast<std::int64_t>(messages_.size()),
               std::move(subject), std::move(status)});
}

void ArchiveRun::logTimes() const {
    consoleLine(fmt::format(
        "[archive] 循环 {:.1f}s · 读 {:.1f}s · 写 {:.1f}s · 校验 {:.1f}s · 进度 0.0s · 解析副本 {:.1f}s · "
        "分组 {:.1f}s · 其他 {:.1f}s · 同步目录 {:.1f}s · 归档 {} 封 · 副本 {}",
        times_.loop.count(), times_.reading.count(), times_.writing.count(), times_.verifying.count(),
        times_.findingCopies.count(), times_.grouping.count(), times_.other().count(), times_.syncing.count(),
        result_.archivedCount, copiesRead_));
}

} // namespace

MailEmailArchiver::MailEmailArchiver(platform::FileLayer& files, ArchiverOptions options)
  : files_(files)
  , options_(std::move(options)) {}

EmailArchiveRunResult
MailEmailArchiver::archive(const MessageList& messages, const std::string& root,
                           const std::function<void(const EmailArchiveProgress&)>& progress,
                           const std::stop_token& stop) {
    return ArchiveRun(files_, options_, messages, root, progress).run(stop);
}

bool archive::isLikelyNotDownloaded(const FileURL& url) {
    const std::string path = url.path().str();
    return path.find("/Mail/V") != std::string::npos && !platform::fileExists(path);
}

} // namespace corvane
