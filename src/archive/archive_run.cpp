#include "archive/archive_run.h"

#include <algorithm>
#include <exception>

#include <fmt/format.h>

#include "archive/archive_error.h"
#include "archive/durable_write.h"
#include "mailstore/header_decoding.h"
#include "platform/directory.h"
#include "platform/durable_file.h"
#include "platform/paths.h"
#include "records/archive_index_file.h"
#include "records/console_log.h"
#include "records/stable_id.h"
#include "records/timestamps.h"

namespace corvane::archive {

namespace {

constexpr const char* notDownloadedReason =
    "邮件未下载到本地。请在 Mail->设置->账户，将「下载附件」改为「全部」并同步后重试。";
constexpr const char* fileGoneReason = "邮件文件不存在，可能已被 Mail 重新索引，请重新扫描后再试。";
constexpr const char* unreadableReason = "无法读取邮件内容，请重新扫描后再试。";
constexpr std::string_view damagedIndexName = ".archive-index.damaged.json";

// Adds the time of its life to a sum.
class Stopwatch {
  public:
    using Clock = std::chrono::steady_clock;

    explicit Stopwatch(Clock::duration& sum)
      : sum_(sum) {}

    Stopwatch(const Stopwatch&) = delete;
    Stopwatch& operator=(const Stopwatch&) = delete;

    ~Stopwatch() { sum_ += Clock::now() - start_; }

  private:
    Clock::duration& sum_;
    Clock::time_point start_ = Clock::now();
};

// A folder of the archive may be a link that somebody put there: nothing is written where it leads out.
void requireInside(const std::string& root, const std::string& folder) {
    const auto resolvedRoot = platform::resolvedPath(root);
    const auto resolvedFolder = platform::resolvedPath(folder);
    if (!resolvedRoot || !resolvedFolder ||
        !resolvedFolder->starts_with(platform::joinPath(*resolvedRoot, ""))) {
        throw ArchiveError(ArchiveError::Kind::writeFailed);
    }
}

// A complete file of an interrupted run counts when the disk gives its bytes back; its sync may never have
// happened.
bool isInPlace(platform::FileLayer& files, std::string_view bytes, const std::string& path) {
    struct stat info{};
    if (files.stat(path, info) != 0 || !S_ISREG(info.st_mode)) return false;
    if (static_cast<std::size_t>(info.st_size) != bytes.size()) return false;
    return syncFile(files, path) && verifyOnDisk(files, bytes, path);
}

// What came of a file, filled by the job at the place.
struct Placement {
    bool isWritten = false; // false: it was there already
    Stopwatch::Clock::duration write{};
    Stopwatch::Clock::duration verify{};
};

void placeFile(platform::FileLayer& files, std::string_view bytes, const std::string& path,
               Placement& placement) {
    if (isInPlace(files, bytes, path)) return;
    {
        const Stopwatch watch(placement.write);
        writePOSIXBlocking(files, bytes, path);
    }
    const Stopwatch watch(placement.verify);
    if (!verifyOnDisk(files, bytes, path)) throw ArchiveError(ArchiveError::Kind::writeVerificationFailed);
    placement.isWritten = true;
}

void createFolder(platform::FileLayer& files, const std::string& root, const std::string& folder) {
    if (const auto error = platform::createDirectories(files, folder)) throw std::system_error(error, folder);
    requireInside(root, folder);
}

const StoredCopy& largestOf(const std::vector<StoredCopy>& group) {
    // The earliest of equals.
    return *std::max_element(group.begin(), group.end(), [](const StoredCopy& a, const StoredCopy& b) {
        return a.data.size() < b.data.size();
    });
}

ArchivedEmailRecord makeRecord(const MailMessageRecord& message, std::string_view id, const StoredCopy& copy,
                               const std::string& relativePath) {
    ArchivedEmailRecord record;
    record.id = id;
    record.messageIdentifier = message.messageIdentifier;
    record.referencedMessageIdentifiers = message.referencedMessageIdentifiers;
    record.subject = message.subject;
    record.sender = message.sender;
    record.recipients = message.recipients;
    if (const auto cc = mailstore::decodedHeaderField("cc", copy.data)) record.ccRecipients = SharedText(*cc);
    record.date = message.date;
    record.mailbox = message.mailbox;
    record.accountIdentifier = message.accountIdentifier;
    record.accountName = message.accountName;
    record.sizeBytes = static_cast<std::int64_t>(copy.data.size());
    for (const MailAttachmentRecord& attachment : message.attachments) {
        record.attachmentNames.push_back(attachment.fileName);
    }
    record.emlRelativePath = relativePath;
    record.archivedAt = currentTimestamp();
    return record;
}

double inSeconds(std::chrono::steady_clock::duration duration) {
    return std::chrono::duration<double>(duration).count();
}

} // namespace

ArchiveRun::ArchiveRun(platform::FileLayer& files, std::string root, std::chrono::milliseconds placeTimeLimit)
  : files_(files)
  , root_(std::move(root))
  , indexPath_(platform::joinPath(root_, archiveIndexFileName))
  , worker_(placeTimeLimit) {
    result_.indexURL = FileURL(indexPath_);
}

// Runs work that touches the place, which may hang in any call, and passes its failure on. The work must own
// what it uses: after a time-out it goes on by itself.
void ArchiveRun::atPlace(const std::function<void()>& work) {
    auto failure = std::make_shared<std::exception_ptr>();
    const bool ended = worker_.run([work, failure] {
        try {
            work();
        } catch (...) {
            *failure = std::current_exception();
        }
    });
    if (!ended) throw ArchiveError(ArchiveError::Kind::writeTimedOut);
    if (*failure) std::rethrow_exception(*failure);
}

void ArchiveRun::prepare() {
    auto found = std::make_shared<std::optional<EmailArchiveIndex>>();
    auto hasFile = std::make_shared<bool>(false);
    atPlace([&files = files_, root = root_, path = indexPath_, found, hasFile] {
        if (const auto error = platform::createDirectories(files, root)) throw std::system_error(error, root);
        *hasFile = platform::fileExists(path);
        *found = readArchiveIndex(path);
    });
    index_ = *found ? std::move(**found) : EmailArchiveIndex{currentTimestamp(), currentTimestamp(), {}};
    if (*hasFile && !*found) keepDamagedIndex();
    for (const ArchivedEmailRecord& record : index_.records) {
        knownIDs_.insert(record.id.str());
        usedPaths_.insert(record.emlRelativePath);
    }
}

// The end of the run writes a new index over the one that can't be read, so its bytes are kept aside.
void ArchiveRun::keepDamagedIndex() {
    atPlace([&files = files_, from = indexPath_, to = platform::joinPath(root_, damagedIndexName)] {
        if (const auto content = platform::readFile(from)) platform::writeFileAtomically(files, to, *content);
    });
}

void ArchiveRun::fail(const MailMessageRecord& message, std::string reason) {
    result_.failedCount += 1;
    result_.failures.push_back({Uuid::random(), message.subject.str(), message.fileURL, std::move(reason)});
}

std::vector<StoredCopy> ArchiveRun::readCopies(const std::vector<FileURL>& urls) {
    const Stopwatch watch(times_.read);
    std::vector<StoredCopy> copies;
    for (const FileURL& url : urls) {
        auto content = platform::readFile(url.path().str());
        if (!content) continue;
        auto file = std::make_shared<const std::string>(std::move(*content));
        if (const auto data = messageData(*file)) copies.push_back({url, file, *data});
    }
    copiesRead_ += copies.size();
    return copies;
}

void ArchiveRun::add(const MailMessageRecord& message) {
    if (knownIDs_.contains(stableID(message))) {
        result_.skippedAlreadyArchived += 1;
        return;
    }
    std::vector<FileURL> urls;
    {
        const Stopwatch watch(times_.find);
        urls = message.allMessageFileURLs();
        std::erase_if(urls, [](const FileURL& url) { return !platform::fileExists(url.path().str()); });
    }
    if (urls.empty()) {
        fail(message, isLikelyNotDownloaded(message.fileURL) ? notDownloadedReason : fileGoneReason);
        return;
    }
    std::vector<StoredCopy> copies = readCopies(urls);
    if (copies.empty()) {
        fail(message, unreadableReason);
        return;
    }
    const std::size_t copyCount = copies.size();
    std::vector<std::vector<StoredCopy>> groups;
    {
        const Stopwatch watch(times_.group);
        groups = groupByBody(std::move(copies));
    }
    try {
        for (std::size_t number = 1; number <= groups.size(); ++number) {
            addVariant(message, groups[number - 1], number, groups.size(), copyCount);
        }
    } catch (const std::exception& error) {
        fail(message, error.what());
        return;
    }
    if (groups.size() >= 2) {
        result_.variantWarnings.push_back(
            fmt::format("{}（{} 个内容不一致的副本，已全部保留）", message.subject.view(), groups.size()));
    }
}

void ArchiveRun::addVariant(const MailMessageRecord& message, const std::vector<StoredCopy>& group,
                            std::size_t number, std::size_t groupCount, std::size_t copyCount) {
    std::string id = stableID(message);
    std::string suffix;
    if (groupCount > 1) {
        id += fmt::format("#v{}", number);
        suffix = fmt::format("（变体{}）", number);
    }
    if (knownIDs_.contains(id)) {
        result_.skippedAlreadyArchived += 1;
        return;
    }
    const StoredCopy& copy = largestOf(group);
    const std::string relativePath = uniqueRelativePath(message, suffix, usedPaths_);
    const bool isWritten = place(copy, relativePath);
    ArchivedEmailRecord record = makeRecord(message, id, copy, relativePath);
    record.sourceCopyCount = static_cast<std::int64_t>(copyCount);
    record.sourceCopiesIdentical = groupCount == 1;
    if (isWritten) {
        result_.archivedCount += 1;
        result_.archivedBytes += record.sizeBytes;
    } else {
        result_.skippedAlreadyArchived += 1;
    }
    index_.records.push_back(std::move(record));
    knownIDs_.insert(std::move(id));
}

bool ArchiveRun::place(const StoredCopy& copy, const std::string& relativePath) {
    const std::string path = platform::joinPath(root_, relativePath);
    const std::string folder(platform::parentPath(path));
    const bool isNewFolder = createdFolders_.insert(folder).second;
    auto placement = std::make_shared<Placement>();
    try {
        atPlace([&files = files_, root = root_, copy, path, folder, isNewFolder, placement] {
            if (isNewFolder) createFolder(files, root, folder);
            placeFile(files, copy.data, path, *placement);
        });
    } catch (...) {
        // The next message of this folder asks for it again.
        if (isNewFolder) createdFolders_.erase(folder);
        throw;
    }
    times_.write += placement->write;
    times_.verify += placement->verify;
    return placement->isWritten;
}

void ArchiveRun::finish() {
    index_.updatedAt = currentTimestamp();
    auto content = std::make_shared<const std::string>(encodeArchiveIndex(index_));
    const Stopwatch watch(times_.flush);
    std::set<std::string> flushed = createdFolders_;
    flushed.insert(root_);
    flushed.insert(std::string(platform::parentPath(root_)));
    // A file is only found again when its folder's entry is on the disk too, so the folders go before the
    // index.
    atPlace([&files = files_, flushed, path = indexPath_, content] {
        syncDirectories(files, flushed);
        if (const auto error = platform::writeFileAtomically(files, path, *content)) {
            throw std::system_error(error, path);
        }
        syncDirectories(files, {path, std::string(platform::parentPath(path))});
    });
    printTimes();
}

void ArchiveRun::printTimes() const {
    const double loop = inSeconds(Clock::now() - loopStart_) - inSeconds(times_.flush);
    const double sums = inSeconds(times_.read + times_.write + times_.verify + times_.find + times_.group);
    consoleLine(fmt::format(
        "[archive] 循环 {:.1f}s · 读 {:.1f}s · 写 {:.1f}s · 校验 {:.1f}s · 进度 {:.1f}s · 解析副本 "
        "{:.1f}s · 分组 {:.1f}s · 其他 {:.1f}s · 同步目录 {:.1f}s · 归档 {} 封 · 副本 {}",
        loop, inSeconds(times_.read), inSeconds(times_.write), inSeconds(times_.verify), 0.0,
        inSeconds(times_.find), inSeconds(times_.group), std::max(0.0, loop - sums), inSeconds(times_.flush),
        result_.archivedCount, copiesRead_));
}

} // namespace corvane::archive
