#include "archive/checks/archive_rebuild.h"

#include <algorithm>
#include <cstddef>
#include <exception>
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include <fmt/format.h>

#include "archive/archive_error.h"
#include "archive/archive_naming.h"
#include "archive/checks/archive_reader.h"
#include "archive/destination/archive_destination.h"
#include "archive/destination/index_records.h"
#include "archive/header_summary.h"
#include "archive/largest_mail.h"
#include "mime/attachment_names.h"
#include "platform/paths.h"
#include "platform/threads/time_limited_worker.h"
#include "records/archive_files/archive_index_file.h"
#include "records/archived/content_hash.h"
#include "records/archived/stable_id.h"
#include "records/timestamps.h"
#include "text/charsets/encoding.h"

namespace corvane {

namespace {

using archive::ArchiveReader;
using archive::HeaderSummary;
using File = ArchiveReader::File;

// A file that no record names.
struct Mail {
    std::string path;
    std::optional<std::int64_t> variant; // by its name
    std::int64_t sizeBytes = 0;
    platform::Sha256Digest hash{};
    FileStamp stamp;
    HeaderSummary header;                       // empty where there is none; then a message is known
    const MailMessageRecord* message = nullptr; // of the last scan
    // Unless there is such a message; absent when the mail couldn't be looked through.
    std::optional<std::vector<SharedText>> attachmentNames{};
};

// The number in a name that ends in "（变体N）", or in that and the number of a repeated name.
std::optional<std::int64_t> variantOf(std::string_view path) {
    constexpr std::string_view opening = "（变体";
    constexpr std::string_view closing = "）";
    std::string_view stem = platform::withoutExtension(platform::lastPathComponent(path));
    if (!stem.ends_with(closing)) {
        const std::size_t dash = stem.rfind('-');
        if (dash == std::string_view::npos || !text::parseInteger(stem.substr(dash + 1))) return std::nullopt;
        stem = stem.substr(0, dash);
    }
    const std::size_t start = stem.rfind(opening);
    if (!stem.ends_with(closing) || start == std::string_view::npos) return std::nullopt;
    stem.remove_prefix(start + opening.size());
    stem.remove_suffix(closing.size());
    const auto number = text::parseInteger(stem);
    return number && *number > 0 ? number : std::nullopt;
}

// The account's name as far as its folder tells: one without a name has a random folder.
std::optional<SharedText> accountOf(const std::string& path) {
    const std::string_view folder = platform::parentPath(path);
    const std::string_view name = platform::lastPathComponent(folder);
    if (platform::parentPath(folder).empty() || name.empty() || Uuid::parse(name)) return std::nullopt;
    return SharedText(name);
}

ArchivedEmailRecord recordOf(const Mail& mail, Date now) {
    ArchivedEmailRecord record;
    record.messageIdentifier = mail.header.messageIdentifier;
    record.referencedMessageIdentifiers = mail.header.referencedMessageIdentifiers;
    record.subject = mail.header.subject;
    record.sender = mail.header.sender;
    record.recipients = mail.header.recipients;
    record.ccRecipients = mail.header.ccRecipients;
    record.date = mail.header.date;
    record.accountName = accountOf(mail.path);
    record.attachmentNames = mail.attachmentNames.value_or(std::vector<SharedText>());
    if (mail.message != nullptr) archive::setMessageFields(record, *mail.message);
    record.sizeBytes = mail.sizeBytes;
    record.emlRelativePath = mail.path;
    record.archivedAt = now;
    record.sourceCopyCount = 1;
    record.sourceCopiesIdentical = true;
    record.contentHash = SharedText(contentHashText(mail.hash));
    record.id = stableID(record);
    return record;
}

// A folder may be large that isn't an archive.
bool isFolderOfYear(const std::string& folder) {
    const std::string_view first = std::string_view(folder).substr(0, folder.find('/'));
    if (std::ranges::count(folder, '/') > 1) return false;
    return first == archive::yearFolder(std::nullopt) ||
           (first.size() == 4 && text::parseInteger(first).value_or(0) > 0);
}

class Rebuild {
  public:
    Rebuild(platform::FileLayer& files, const std::string& root, const RebuildOptions& options,
            const std::stop_token& stop)
      : options_(options)
      , stop_(stop)
      , root_(root)
      , reader_(files, root, {.stop = stop})
      , scanned_(options.scanned)
      , destination_(files, root, platform::placeLimit) {}

    ArchiveRebuild run();

  private:
    void loadIndex();
    void readMails();
    [[nodiscard]] bool isIndexed(const std::string& path);
    void readMail(const std::string& path);
    [[nodiscard]] std::optional<std::vector<SharedText>> attachmentNamesOf(const std::string& path,
                                                                           const File& file) const;
    void adopt();
    void adoptMessage(std::string_view base, const std::vector<const Mail*>& mails);
    bool isKnownContent(const Mail& mail, const std::vector<std::size_t>& records);
    std::optional<platform::Sha256Digest> contentOf(std::size_t record);
    [[nodiscard]] SharedText freeID(std::string_view base, const Mail& mail) const;
    void count(const Mail& mail);
    void fail(std::string path, std::string reason);
    void save();

    [[nodiscard]] Date now() const { return options_.now ? options_.now() : currentTimestamp(); }

    const RebuildOptions& options_;
    std::stop_token stop_;
    std::string root_;
    ArchiveReader reader_;
    archive::ScannedCopies scanned_;
    archive::ArchiveDestination destination_;
    EmailArchiveIndex index_;
    bool isDamaged_ = false;
    std::unordered_set<std::string> indexedPaths_; // keys
    std::optional<std::set<std::pair<dev_t, ino_t>>> indexedFiles_;
    SharedTextSet ids_;
    std::unordered_map<std::string, std::vector<std::size_t>> recordsByBaseID_;
    std::map<std::size_t, File> filesOfRecords_; // those that had to be read
    std::vector<Mail> mails_;
    ArchiveRebuild result_;
};

ArchiveRebuild Rebuild::run() {
    try {
        if (!options_.isDryRun) destination_.lock();
        loadIndex();
        readMails();
        adopt();
        result_.records = static_cast<std::int64_t>(index_.records.size());
        if (stop_.stop_requested()) throw archive::ReadingStopped();
        if (!options_.isDryRun && result_.adopted > 0) save();
        return std::move(result_);
    } catch (const archive::ReadingStopped&) {
        ArchiveRebuild stopped;
        stopped.wasCancelled = true;
        return stopped;
    }
}

void Rebuild::loadIndex() {
    auto known = reader_.readIndexIfThere();
    const Date start = now();
    isDamaged_ = known.isDamaged;
    if (known.index && !options_.isDryRun)
        index_ = destination_.loadIndex(start).index;
    else
        index_ = known.index ? std::move(*known.index) : EmailArchiveIndex{start, start, {}};
    for (std::size_t i = 0; i < index_.records.size(); ++i) {
        const ArchivedEmailRecord& record = index_.records[i];
        indexedPaths_.insert(archive::pathKey(record.emlRelativePath));
        ids_.insert(record.id);
        recordsByBaseID_[std::string(baseID(record))].push_back(i);
    }
}

void Rebuild::readMails() {
    ArchiveReader::Mails found = reader_.listMails();
    for (std::string& folder : found.unreadable) {
        if (folder.empty()) throw ArchiveAccessError("无法读取归档文件夹", root_, "文件夹不存在，或无法读取");
        fail(std::move(folder), "无法读取这个文件夹");
    }
    for (std::string& path : found.inCloud) {
        if (!indexedPaths_.contains(archive::pathKey(path)))
            fail(std::move(path), "文件只在云端，请先下载到本机");
    }
    std::erase_if(found.paths, [&](const std::string& path) { return isIndexed(path); });
    for (std::size_t i = 0; i < found.paths.size(); ++i) {
        readMail(found.paths[i]);
        if (options_.progress) options_.progress(i + 1, found.paths.size());
    }
}

bool Rebuild::isIndexed(const std::string& path) {
    if (indexedPaths_.contains(archive::pathKey(path))) return true;
    if (index_.records.empty()) return false;
    // On a disk without case the record may spell it differently.
    if (!indexedFiles_) {
        indexedFiles_.emplace();
        for (const ArchivedEmailRecord& record : index_.records) {
            if (const auto identity = reader_.identityOf(record.emlRelativePath.str()))
                indexedFiles_->insert(*identity);
        }
    }
    const auto identity = reader_.identityOf(path);
    return identity && indexedFiles_->contains(*identity);
}

void Rebuild::readMail(const std::string& path) {
    File file = reader_.readFile(path, archive::largestMailBytes);
    switch (file.state) {
    case File::State::absent:
        return fail(path, "不是普通文件");
    case File::State::failed:
        return fail(path, "无法读取文件");
    case File::State::tooLarge:
        return fail(path, "文件过大，不是邮件");
    case File::State::read:
        break;
    }
    auto header = archive::headerSummary(file.start);
    const MailMessageRecord* const message = scanned_.messageWith(file.hash, file.start);
    if (!header && message == nullptr) return fail(path, "没有邮件头，不是邮件");
    mails_.push_back({path, variantOf(path), file.bytesRead, file.hash, file.stamp,
                      std::move(header).value_or(HeaderSummary()), message});
    if (message == nullptr) mails_.back().attachmentNames = attachmentNamesOf(path, file);
}

std::optional<std::vector<SharedText>> Rebuild::attachmentNamesOf(const std::string& path,
                                                                  const File& file) const {
    const std::vector<SharedText> none;
    if (!options_.attachmentNames || options_.isDryRun) return none;
    const bool isWholeHere = file.bytesRead == std::ssize(file.start);
    if (isWholeHere && !mime::mayContainEmbeddedAttachment(file.start)) return none;
    return options_.attachmentNames(platform::joinPath(root_, path), stop_);
}

void Rebuild::adopt() {
    // In the order of the paths, which is that of the first mail of each message.
    std::unordered_map<std::string, std::size_t> positions;
    std::vector<std::pair<std::string, std::vector<const Mail*>>> messages;
    for (const Mail& mail : mails_) {
        std::string base = stableID(recordOf(mail, Date()));
        const auto [found, isNew] = positions.emplace(base, messages.size());
        if (isNew) messages.emplace_back(std::move(base), std::vector<const Mail*>());
        messages[found->second].second.push_back(&mail);
    }
    for (auto& [base, mails] : messages) {
        // Those with a number in their name first, so that nobody else gets it.
        std::ranges::stable_sort(mails, [](const Mail* a, const Mail* b) {
            return a->variant.value_or(INT64_MAX) < b->variant.value_or(INT64_MAX);
        });
        adoptMessage(base, mails);
    }
}

void Rebuild::adoptMessage(std::string_view base, const std::vector<const Mail*>& mails) {
    std::vector<std::size_t>& records = recordsByBaseID_[std::string(base)];
    std::vector<std::size_t> adopted;
    for (const Mail* mail : mails) {
        if (isKnownContent(*mail, records)) continue;
        ArchivedEmailRecord record = recordOf(*mail, now());
        record.id = freeID(base, *mail);
        ids_.insert(record.id);
        adopted.push_back(index_.records.size());
        records.push_back(index_.records.size());
        index_.records.push_back(std::move(record));
        count(*mail);
        if (mail->message == nullptr && !mail->attachmentNames) ++result_.withUnknownAttachments;
    }
    for (const std::size_t position : adopted)
        index_.records[position].sourceCopiesIdentical = records.size() == 1;
}

// Whether a record of its message has this content. One whose file is gone gets the mail as its file.
bool Rebuild::isKnownContent(const Mail& mail, const std::vector<std::size_t>& records) {
    for (const std::size_t position : records) {
        ArchivedEmailRecord& record = index_.records[position];
        const bool isAdopted = !indexedPaths_.contains(archive::pathKey(record.emlRelativePath));
        const bool isFileGone = !isAdopted && reader_.isSurelyAbsent(record.emlRelativePath.str());
        const auto content = contentOf(position);
        // Of a lost file without a hash only the size is known.
        if (content ? *content != mail.hash : !isFileGone || record.sizeBytes != mail.sizeBytes) continue;
        if (isFileGone) {
            record.emlRelativePath = mail.path;
            count(mail);
        } else {
            fail(mail.path, fmt::format("与“{}”内容相同，没有重复收入", record.emlRelativePath));
        }
        return true;
    }
    return false;
}

// Of its hash, else of its file as it is read; absent where neither can be had.
std::optional<platform::Sha256Digest> Rebuild::contentOf(std::size_t position) {
    const ArchivedEmailRecord& record = index_.records[position];
    if (record.contentHash) {
        if (auto hash = parseContentHash(*record.contentHash)) return hash;
    }
    auto found = filesOfRecords_.find(position);
    if (found == filesOfRecords_.end()) {
        found = filesOfRecords_.emplace(position, reader_.readFile(record.emlRelativePath.str())).first;
    }
    if (found->second.state != File::State::read) return std::nullopt;
    return found->second.hash;
}

SharedText Rebuild::freeID(std::string_view base, const Mail& mail) const {
    const auto variant = [&](std::int64_t number) { return SharedText(fmt::format("{}#v{}", base, number)); };
    if (mail.variant && !ids_.contains(variant(*mail.variant))) return variant(*mail.variant);
    if (!mail.variant && !ids_.contains(base)) return base;
    std::int64_t number = 1;
    while (ids_.contains(variant(number))) ++number;
    return variant(number);
}

void Rebuild::count(const Mail& mail) {
    ++result_.adopted;
    result_.readings.push_back(
        {mail.path, {.stamp = mail.stamp, .hash = mail.hash, .readAt = currentTimestamp()}});
}

void Rebuild::fail(std::string path, std::string reason) {
    result_.failures.push_back({std::move(path), std::move(reason)});
}

void Rebuild::save() {
    // Moves a damaged one aside, now that there is another.
    if (isDamaged_) destination_.loadIndex(now());
    index_.updatedAt = now();
    destination_.saveIndex(index_, options_.markHidden);
    destination_.syncRoot();
}

} // namespace

std::optional<RebuildNeed> rebuildNeed(const std::string& root, const std::stop_token& stop,
                                       platform::FileLayer& files) {
    try {
        ArchiveReader reader(files, root, {.stop = stop});
        const auto known = reader.readIndexIfThere();
        if (known.index) return std::nullopt;
        const auto mails = reader.listMails(&isFolderOfYear).paths;
        const auto count = std::ranges::count_if(
            mails, [](const std::string& path) { return path.find('/') != std::string::npos; });
        if (count == 0) return std::nullopt;
        return RebuildNeed{count, known.isDamaged};
    } catch (const std::exception&) { // nobody can look, or wants to
        return std::nullopt;
    }
}

ArchiveRebuild rebuildArchive(const std::string& root, const RebuildOptions& options,
                              const std::stop_token& stop, platform::FileLayer& files) {
    return Rebuild(files, root, options, stop).run();
}

} // namespace corvane
