#include "archive/run/message_archiver.h"

#include <algorithm>
#include <memory>
#include <utility>

#include <fmt/format.h>

#include "archive/archive_error.h"
#include "mime/header_decoding.h"
#include "platform/stop_watch.h"
#include "records/archived/content_hash.h"
#include "records/archived/stable_id.h"
#include "text/collation.h"

namespace corvane::archive {

namespace {

using platform::Sha256Digest;
using platform::StopWatch;

FileReading completeReading(const Sha256Digest& hash, const FileStamp& stamp, Date now) {
    return {.stamp = stamp, .outcome = FileReading::Outcome::complete, .hash = hash, .readAt = now};
}

} // namespace

// The work on one message, whose new records come to the others only when all of it is done.
class MessageArchiver::Work {
  public:
    Work(MessageArchiver& archiver, const MailMessageRecord& message, MessageCopies& copies)
      : archiver_(archiver)
      , message_(message)
      , copies_(copies)
      , identity_(stableID(message)) {
        const StopWatch watch;
        groups_ = groupByBody(copies.messages);
        archiver.times_.grouping += watch.elapsed();
    }

    HandledMessage done() {
        try {
            placeAll();
            record();
        } catch (const ArchiveError& error) {
            handled_ = HandledMessage();
            handled_.failure = error.what();
            bodies_.clear();
            addKnownFiles();
        }
        addBodyHashes();
        return std::move(handled_);
    }

  private:
    void placeAll() {
        known_ = archiver_.lookAtKnown(identity_);
        restore();
        const auto missing = groupsWithoutFile(groups_, known_, copies_.readings);
        const auto held = static_cast<std::int64_t>(groups_.size() - missing.size());
        handled_.inPlace = std::max<std::int64_t>(0, held - handled_.written);
        addKnownFiles();
        for (const std::size_t group : missing) addGroup(groups_[group].largest);
        warnOfVariants(missing.size());
    }

    void restore();
    void addKnownFiles();
    void addGroup(std::size_t chosen);
    void addBodyHashes();
    void warnOfVariants(std::size_t added);
    void record();
    std::pair<SharedText, std::string> nextName();
    PlacedFile placeNew(const MessageBytes& chosen, std::string_view suffix, std::string& path);
    void addFile(std::string relativePath, std::size_t copy, const PlacedFile& placed);
    [[nodiscard]] ArchivedEmailRecord newRecord(SharedText id, const std::string& path,
                                                std::size_t chosen) const;
    [[nodiscard]] const Sha256Digest& hashOf(std::size_t copy) const;

    MessageArchiver& archiver_;
    const MailMessageRecord& message_;
    MessageCopies& copies_;
    std::string identity_;
    std::vector<BodyGroup> groups_;
    std::vector<KnownMail> known_;
    std::size_t lastVariant_ = 0;
    std::vector<ArchivedEmailRecord> newRecords_;
    std::vector<std::string_view> bodies_; // of the files in handled_.readings
    HandledMessage handled_;
};

// Writes files again that are gone or altered.
void MessageArchiver::Work::restore() {
    for (const Restoration& restoration : restorationsFor(known_, copies_.messages, copies_.readings)) {
        KnownMail& known = known_[restoration.known];
        const MessageBytes& message = copies_.messages[restoration.copy];
        const PlacedFile placed = archiver_.place(message, known.record->emlRelativePath.str());
        if (placed.outcome == PlacedFile::Outcome::nameTaken) continue;
        if (placed.outcome == PlacedFile::Outcome::written) {
            ++handled_.written;
            handled_.bytes += static_cast<std::int64_t>(message.bytes.size());
        }
        known.file = {.state = ArchivedFile::State::read,
                      .bytes = std::make_shared<const std::string>(message.bytes),
                      .hash = hashOf(restoration.copy),
                      .stamp = placed.reading.stamp,
                      .folder = placed.folder};
    }
}

void MessageArchiver::Work::addKnownFiles() {
    for (const KnownMail& known : known_) {
        if (known.file.state != ArchivedFile::State::read) continue;
        handled_.readings.push_back({known.record->emlRelativePath.str(),
                                     completeReading(known.file.hash, known.file.stamp, archiver_.now_())});
        handled_.folders.push_back(known.file.folder);
        bodies_.push_back(std::string_view(*known.file.bytes).substr(bodyStartIndex(*known.file.bytes)));
    }
}

// A message of one body that is new has its plain id; every other file is a variant with the next free
// number.
std::pair<SharedText, std::string> MessageArchiver::Work::nextName() {
    const bool isOnlyOne = groups_.size() == 1 && known_.empty();
    if (isOnlyOne && !archiver_.records_.hasID(identity_)) return {identity_, ""};
    lastVariant_ = archiver_.records_.freeVariant(identity_, lastVariant_ + 1);
    return {variantID(identity_, lastVariant_), fmt::format("（变体{}）", lastVariant_)};
}

// What a file in its place was read back as, too: it was compared byte for byte.
const Sha256Digest& MessageArchiver::Work::hashOf(std::size_t copy) const {
    return copies_.readings[copy].reading.hash;
}

void MessageArchiver::Work::addGroup(std::size_t chosen) {
    auto [id, suffix] = nextName();
    std::string path;
    const PlacedFile placed = placeNew(copies_.messages[chosen], suffix, path);
    newRecords_.push_back(newRecord(std::move(id), path, chosen));
    addFile(std::move(path), chosen, placed);
}

PlacedFile MessageArchiver::Work::placeNew(const MessageBytes& chosen, std::string_view suffix,
                                           std::string& path) {
    while (true) {
        path = archiver_.paths_.uniqueRelativePath(message_, suffix);
        const PlacedFile placed = archiver_.place(chosen, path);
        if (placed.outcome != PlacedFile::Outcome::nameTaken) return placed;
    }
}

void MessageArchiver::Work::addFile(std::string relativePath, std::size_t copy, const PlacedFile& placed) {
    const MessageBytes& message = copies_.messages[copy];
    if (placed.outcome == PlacedFile::Outcome::written) {
        ++handled_.written;
        handled_.bytes += static_cast<std::int64_t>(message.bytes.size());
    } else {
        ++handled_.inPlace;
    }
    handled_.readings.push_back(
        {std::move(relativePath), completeReading(hashOf(copy), placed.reading.stamp, archiver_.now_())});
    handled_.folders.push_back(placed.folder);
    bodies_.push_back(message.body());
}

ArchivedEmailRecord MessageArchiver::Work::newRecord(SharedText id, const std::string& path,
                                                     std::size_t chosen) const {
    const std::string_view bytes = copies_.messages[chosen].bytes;
    ArchivedEmailRecord record;
    setMessageFields(record, message_);
    record.id = std::move(id);
    if (auto cc = mime::decodedHeaderField("cc", bytes)) record.ccRecipients = SharedText(*cc);
    record.sizeBytes = static_cast<std::int64_t>(bytes.size());
    record.emlRelativePath = path;
    record.archivedAt = archiver_.now_();
    record.sourceCopyCount = static_cast<std::int64_t>(copies_.messages.size());
    record.sourceCopiesIdentical = groups_.size() == 1;
    record.contentHash = SharedText(contentHashText(hashOf(chosen)));
    return record;
}

// Only where a copy's own bytes are in no file: it is held by a file with the same body, or by none.
void MessageArchiver::Work::addBodyHashes() {
    const auto isHeldWhole = [&](const CopyReading& copy) {
        return std::ranges::any_of(handled_.readings, [&](const ArchivedFileReading& file) {
            return file.reading.hash == copy.reading.hash;
        });
    };
    if (copies_.ofOthers.empty() && std::ranges::all_of(copies_.readings, isHeldWhole)) return;
    for (std::size_t copy = 0; copy < copies_.readings.size(); ++copy) {
        copies_.readings[copy].reading.bodyHash = platform::sha256(copies_.messages[copy].body());
    }
    for (std::size_t file = 0; file < bodies_.size(); ++file) {
        handled_.readings[file].reading.bodyHash = platform::sha256(bodies_[file]);
    }
}

void MessageArchiver::Work::warnOfVariants(std::size_t added) {
    const std::size_t kept = groups_.size() > 1 ? groups_.size() : known_.size() + added;
    if (groups_.size() == 1 && (known_.empty() || added == 0)) return;
    handled_.variantWarning = fmt::format("{}（{} 个内容不一致的副本，已全部保留）", message_.subject, kept);
}

void MessageArchiver::Work::record() {
    for (ArchivedEmailRecord& record : newRecords_) {
        handled_.records.push_back(archiver_.records_.all().size());
        archiver_.records_.add(std::move(record));
    }
}

MessageArchiver::MessageArchiver(ArchiveDestination& destination, IndexRecords& records,
                                 const std::function<Date()>& now)
  : destination_(destination)
  , records_(records)
  , now_(now) {
    for (const ArchivedEmailRecord& record : records.all()) paths_.markUsed(record.emlRelativePath);
}

std::vector<KnownMail> MessageArchiver::lookAtKnown(std::string_view baseID) {
    std::vector<KnownMail> known;
    for (const std::size_t position : records_.ofMessage(baseID)) {
        const ArchivedEmailRecord& record = records_.all()[position];
        const StopWatch watch;
        ArchivedFile file = destination_.readArchived(record.emlRelativePath.str(), record.sizeBytes);
        times_.verifying += watch.elapsed();
        if (file.state == ArchivedFile::State::couldNotLook) {
            throw ArchiveError(ArchiveError::Case::couldNotLook);
        }
        known.push_back({.record = &record, .file = std::move(file)});
        KnownMail& mail = known.back();
        if (!isIntact(mail)) mail.isRestorable = isPlaceOfMail(record.emlRelativePath) && isOnlyOneAt(record);
    }
    return known;
}

// Whether no other record names the place: what lies there may be the other's file.
bool MessageArchiver::isOnlyOneAt(const ArchivedEmailRecord& record) {
    if (!sharedPlaces_) {
        SharedTextSet places;
        sharedPlaces_.emplace();
        for (const ArchivedEmailRecord& other : records_.all()) {
            const SharedText place = text::canonicallyComposed(other.emlRelativePath);
            if (!places.insert(place).second) sharedPlaces_->insert(place);
        }
    }
    return !sharedPlaces_->contains(SharedText(text::canonicallyComposed(record.emlRelativePath)));
}

bool MessageArchiver::holds(const MailMessageRecord& message) {
    return std::ranges::any_of(lookAtKnown(stableID(message)), isIntact);
}

HandledMessage MessageArchiver::archive(const MailMessageRecord& message, MessageCopies& copies) {
    return Work(*this, message, copies).done();
}

PlacedFile MessageArchiver::place(const MessageBytes& message, const std::string& relativePath) {
    const StopWatch watch;
    PlacedFile placed = destination_.writePOSIX(message, relativePath);
    times_.verifying += placed.verifying;
    times_.writing += watch.elapsed() - placed.verifying;
    return placed;
}

} // namespace corvane::archive
