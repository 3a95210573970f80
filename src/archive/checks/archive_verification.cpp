#include "archive/checks/archive_verification.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <set>
#include <unordered_set>
#include <utility>

#include "archive/checks/archive_reader.h"
#include "archive/destination/archive_destination.h"
#include "archive/message_identity.h"
#include "platform/threads/time_limited_worker.h"
#include "records/archive_files/archive_index_file.h"
#include "records/archived/content_hash.h"
#include "records/archived/stable_id.h"
#include "records/timestamps.h"

namespace corvane {

namespace {

using archive::ArchiveReader;
using archive::pathKey;
using File = ArchiveReader::File;

// What a write that never reached the disk leaves.
bool isOnlyZeros(const File& file) {
    return file.bytesRead > 1 && std::ranges::all_of(file.start, [](char byte) { return byte == 0; });
}

bool isAnother(const ArchivedEmailRecord& record, const File& file) {
    return isOnlyZeros(file) ||
           archive::holdsAnotherMessage(archive::ExpectedMessage::of(record), file.start);
}

std::optional<platform::Sha256Digest> hashOf(const ArchivedEmailRecord& record) {
    return record.contentHash ? parseContentHash(*record.contentHash) : std::nullopt;
}

class Verification {
  public:
    Verification(platform::FileLayer& files, const std::string& root, const std::stop_token& stop)
      : reader_(files, root, {.stop = stop}) {}

    EmailArchiveIndex readIndex() { return reader_.readIndex(); }

    void check(const ArchivedEmailRecord& record);
    void findUnindexed();

    // Adds the hash of each sound file that a second reading gives again; whether there was one.
    bool addHashes(std::vector<ArchivedEmailRecord>& records);

    ArchiveVerification result;
    std::vector<ArchivedFileReading> readings;

  private:
    void compare(const ArchivedEmailRecord& record, const File& file, bool& isWrongMessage);
    void addReading(const std::string& path, const File& file);
    bool isIndexed(const std::string& relativePath);

    ArchiveReader reader_;
    std::unordered_set<std::string> indexedPaths_; // keys
    std::unordered_set<std::string> duplicates_;
    std::set<std::pair<dev_t, ino_t>> indexedFiles_;
    std::vector<std::pair<std::size_t, platform::Sha256Digest>> withoutHash_; // positions of sound records
};

void Verification::check(const ArchivedEmailRecord& record) {
    const std::string path = record.emlRelativePath.str();
    bool isNamedBefore = !indexedPaths_.insert(pathKey(path)).second;
    bool isWrongMessage = baseID(record) != stableID(record);
    const File file = reader_.readFile(path);
    ++result.checked;
    result.bytes += file.bytesRead;
    switch (file.state) {
    case File::State::absent:
        result.missing.push_back(path);
        break;
    case File::State::tooLarge:
    case File::State::failed:
        result.unreadable.push_back(path);
        break;
    case File::State::read:
        compare(record, file, isWrongMessage);
    }
    if (file.identity != decltype(file.identity)() && !indexedFiles_.insert(file.identity).second)
        isNamedBefore = true;
    if (!isNamedBefore) addReading(path, file);
    if (isNamedBefore && duplicates_.insert(path).second) result.duplicatePaths.push_back(path);
    if (isWrongMessage) result.identityMismatch.push_back(path);
}

void Verification::compare(const ArchivedEmailRecord& record, const File& file, bool& isWrongMessage) {
    const std::string path = record.emlRelativePath.str();
    const bool hasSize = file.bytesRead == record.sizeBytes;
    if (!hasSize) result.sizeMismatch.push_back(path);
    if (const auto hash = hashOf(record)) {
        if (*hash != file.hash) result.altered.push_back(path);
        return;
    }
    ++result.unchecked;
    isWrongMessage = isWrongMessage || isAnother(record, file);
    // A hash of another form is somebody else's word for the content.
    if (hasSize && !isWrongMessage && !record.contentHash)
        withoutHash_.emplace_back(static_cast<std::size_t>(result.checked - 1), file.hash);
}

void Verification::addReading(const std::string& path, const File& file) {
    using Outcome = FileReading::Outcome;
    const bool wasRead = file.state == File::State::read;
    readings.push_back({path,
                        {.stamp = file.stamp,
                         .outcome = wasRead                             ? Outcome::complete
                                    : file.state == File::State::absent ? Outcome::gone
                                                                        : Outcome::unreadable,
                         .hash = wasRead ? file.hash : platform::Sha256Digest{},
                         .readAt = currentTimestamp()}});
}

void Verification::findUnindexed() {
    ArchiveReader::Mails mails = reader_.listMails();
    std::ranges::move(mails.unreadable, std::back_inserter(result.unreadable));
    for (std::string& path : mails.paths) {
        if (!isIndexed(path)) result.unindexed.push_back(std::move(path));
    }
}

bool Verification::isIndexed(const std::string& relativePath) {
    if (indexedPaths_.contains(pathKey(relativePath))) return true;
    // On a disk without case the record may spell it differently.
    const auto identity = reader_.identityOf(relativePath);
    return identity && indexedFiles_.contains(*identity);
}

bool Verification::addHashes(std::vector<ArchivedEmailRecord>& records) {
    for (const auto& [position, hash] : withoutHash_) {
        ArchivedEmailRecord& record = records[position];
        const std::string path = record.emlRelativePath.str();
        const File again = reader_.readFile(path);
        if (again.state != File::State::read || again.hash != hash) {
            result.unreadable.push_back(path);
            continue;
        }
        record.contentHash = contentHashText(hash);
        ++result.recorded;
        --result.unchecked;
    }
    return result.recorded > 0;
}

} // namespace

bool ArchiveVerification::isClean() const {
    return missing.empty() && sizeMismatch.empty() && altered.empty() && unindexed.empty() &&
           identityMismatch.empty() && duplicatePaths.empty() && unreadable.empty() && !wasCancelled;
}

ArchiveVerification verifyArchive(const std::string& root, const VerificationProgress& progress,
                                  const std::stop_token& stop, platform::FileLayer& files,
                                  const std::optional<HashRecording>& recording,
                                  const ReadingsKeeper& keepReadings) {
    archive::ArchiveDestination destination(files, root, platform::placeLimit);
    if (recording) destination.lock();
    Verification verification(files, root, stop);
    const auto keep = [&] {
        if (keepReadings) keepReadings(std::exchange(verification.readings, {}));
    };
    try {
        EmailArchiveIndex index = verification.readIndex();
        if (recording) index = destination.loadIndex(currentTimestamp()).index;
        for (std::size_t position = 0; position < index.records.size() && !stop.stop_requested();
             ++position) {
            verification.check(index.records[position]);
            if (progress) progress(position + 1, index.records.size());
        }
        // After a stop the records that weren't looked at would make their files unindexed ones.
        if (!stop.stop_requested()) verification.findUnindexed();
        if (recording && !stop.stop_requested() && verification.addHashes(index.records)) {
            index.updatedAt = currentTimestamp();
            destination.saveIndex(index, recording->markHidden);
            destination.syncRoot();
        }
    } catch (const archive::ReadingStopped&) { // NOLINT(bugprone-empty-catch): told below
    } catch (...) {
        keep();
        throw;
    }
    keep();
    verification.result.wasCancelled = stop.stop_requested();
    return std::move(verification.result);
}

} // namespace corvane
