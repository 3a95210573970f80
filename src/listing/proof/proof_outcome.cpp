#include "listing/proof/proof_outcome.h"

#include <algorithm>
#include <array>

#include "platform/paths.h"
#include "records/archived/content_hash.h"

namespace corvane {

namespace {

using Digest = platform::Sha256Digest;
using Outcome = FileReading::Outcome;
using Place = ProofFile::Place;

enum class FileState {
    confirmed,  // read back with its record's bytes
    unread,     // there, and not read as it is now
    unreadable, // reading it, or looking at it, has failed
    lost,       // not there, or with other bytes than its record's, or so when it was last in reach
    unknown,    // out of reach, and never read
};

struct KnownFile {
    FileState state = FileState::unknown;
    std::optional<Digest> hash; // of the record, or of its file where the record has none
    std::optional<Digest> bodyHash;
    bool canBeRead = false;
};

// The reading of a copy as it is now; null when it has to be read.
const FileReading* validReading(const ProofCopy& copy) {
    return copy.reading != nullptr && copy.reading->stamp == copy.stamp ? copy.reading : nullptr;
}

// What a reading has shown against a file stands while only something else about it has changed, such as its
// mode: what would speak for it has to be read again.
bool mayBeAsRead(const FileReading* reading, const FileStamp& now) {
    return reading != nullptr && reading->stamp.sizeBytes == now.sizeBytes &&
           reading->stamp.modifiedNanoseconds == now.modifiedNanoseconds;
}

std::optional<Digest> recordHash(const ArchivedEmailRecord& record) {
    return record.contentHash ? parseContentHash(*record.contentHash) : std::nullopt;
}

// Whether what was read are the bytes that the record stands for.
bool agrees(const FileReading& reading, const ArchivedEmailRecord& record) {
    if (reading.outcome != Outcome::complete || reading.stamp.sizeBytes != record.sizeBytes) return false;
    const auto hash = recordHash(record);
    return !hash || *hash == reading.hash;
}

FileState stateOf(const ProofFile& file) {
    const ArchivedEmailRecord& record = file.entry->record;
    const FileReading* const reading = file.reading;
    switch (file.place) {
    case Place::gone:
        return FileState::lost;
    case Place::unseen:
        return FileState::unreadable;
    case Place::outOfReach:
        // What the last look at it has found, good or bad.
        if (reading == nullptr) return FileState::unknown;
        if (agrees(*reading, record)) return FileState::confirmed;
        return reading->outcome == Outcome::complete || reading->outcome == Outcome::gone
                   ? FileState::lost
                   : FileState::unknown;
    case Place::there:
        break;
    }
    if (file.stamp.sizeBytes != record.sizeBytes) return FileState::lost;
    if (!mayBeAsRead(reading, file.stamp)) return FileState::unread;
    if (reading->outcome == Outcome::unreadable) return FileState::unreadable;
    if (!agrees(*reading, record)) return FileState::lost;
    return reading->stamp == file.stamp ? FileState::confirmed : FileState::unread;
}

// Something may have been done to a file that was not what its record says.
bool mayBeMended(const ProofFile& file) {
    return file.place == Place::there && file.stamp.sizeBytes == file.entry->record.sizeBytes &&
           mayBeAsRead(file.reading, file.stamp) && file.reading->stamp != file.stamp &&
           !agrees(*file.reading, file.entry->record);
}

KnownFile knownFile(const ProofFile& file) {
    KnownFile known{.state = stateOf(file),
                    .hash = recordHash(file.entry->record),
                    .bodyHash = {},
                    .canBeRead = file.place == Place::there};
    if (known.state != FileState::confirmed) return known;
    known.hash = file.reading->hash;
    known.bodyHash = file.reading->bodyHash;
    return known;
}

// Most messages have one record.
std::vector<KnownFile> knownFiles(std::span<const ProofFile> files) {
    std::vector<KnownFile> known;
    known.reserve(files.size());
    for (const ProofFile& file : files) known.push_back(knownFile(file));
    return known;
}

enum class Counterpart {
    found,
    none,
    notLookedAt, // a file that has to be read or is out of reach, or a hash of a body that is absent
    unreadable,  // a file that can't be read might be it
};

Counterpart counterpartIn(const KnownFile& file, const FileReading& copy) {
    const bool isSame = file.hash == copy.hash;
    switch (file.state) {
    case FileState::confirmed:
        if (isSame) return Counterpart::found;
        if (!file.bodyHash) return file.canBeRead ? Counterpart::notLookedAt : Counterpart::none;
        if (!copy.bodyHash) return Counterpart::notLookedAt;
        return copy.bodyHash == file.bodyHash ? Counterpart::found : Counterpart::none;
    case FileState::unread:
        return Counterpart::notLookedAt;
    case FileState::unreadable:
        return Counterpart::unreadable;
    case FileState::unknown:
        // Of an archive that isn't there, a hash that is known and another one says enough.
        return isSame || !file.hash ? Counterpart::notLookedAt : Counterpart::none;
    case FileState::lost:
        return Counterpart::none;
    }
    return Counterpart::none;
}

struct Match {
    Counterpart counterpart = Counterpart::none;
    std::size_t file = 0; // the one that decides, unless there is none
};

Match counterpartOf(const FileReading& copy, std::span<const KnownFile> files) {
    // What might still turn out to be one comes before what can't.
    constexpr auto weight = [](Counterpart counterpart) {
        constexpr std::array weights{3, 0, 2, 1};
        return weights.at(static_cast<std::size_t>(counterpart));
    };
    Match best;
    for (std::size_t position = 0; position < files.size(); ++position) {
        const Counterpart found = counterpartIn(files[position], copy);
        if (weight(found) > weight(best.counterpart)) best = {found, position};
    }
    return best;
}

std::string pathOf(const ProofFile& file) {
    return platform::joinPath(file.entry->locationRootPath, file.entry->record.emlRelativePath);
}

ProofVerdict verdictOnCopy(const ProofCopy& copy, std::span<const ProofFile> files,
                           std::span<const KnownFile> known) {
    const FileReading* const reading = copy.reading;
    if (!mayBeAsRead(reading, copy.stamp)) return {};
    const auto against = [&](ProofOutcome outcome) { return ProofVerdict{outcome, std::string(copy.path)}; };
    if (reading->outcome == Outcome::unreadable) return against(ProofOutcome::unreadable);
    if (reading->outcome == Outcome::incomplete) return against(ProofOutcome::incomplete);
    const Match match = counterpartOf(*reading, known);
    switch (match.counterpart) {
    case Counterpart::found:
        return validReading(copy) != nullptr ? ProofVerdict{ProofOutcome::proven, {}} : ProofVerdict();
    case Counterpart::none:
        return against(ProofOutcome::differs);
    case Counterpart::unreadable:
        return {ProofOutcome::unreadable, pathOf(files[match.file])};
    case Counterpart::notLookedAt:
        break;
    }
    return {};
}

// Of the verdicts on several copies the gravest stands: a message that lacks something has to be archived
// again, whatever else there is to say.
int gravity(ProofOutcome outcome) {
    constexpr std::array<int, proofOutcomeCount> gravities{1, 0, 4, 3, 5, 2};
    return gravities.at(static_cast<std::size_t>(outcome));
}

bool isLost(const KnownFile& file) {
    return file.state == FileState::lost;
}

bool needsFile(const KnownFile& file, const FileReading& copy) {
    if (!file.canBeRead) return false;
    if (file.state == FileState::unread) return true;
    return file.state == FileState::confirmed && file.hash != copy.hash && !file.bodyHash;
}

// Of the files that a copy can still be compared with.
KnownHashes comparedHashes(std::span<const KnownFile> files) {
    KnownHashes hashes;
    for (const KnownFile& file : files) {
        if (file.state == FileState::confirmed || file.state == FileState::unread)
            hashes.push_back(file.hash);
    }
    return hashes;
}

// A copy whose hash nobody has is compared by its body.
bool needsBody(const FileReading& copy, std::span<const KnownFile> files) {
    if (copy.outcome != Outcome::complete || copy.bodyHash) return false;
    const bool canBeCompared = std::ranges::any_of(files, [](const KnownFile& file) {
        return file.state == FileState::confirmed && (file.bodyHash || file.canBeRead);
    });
    return canBeCompared && isBodyHashNeeded(copy.hash, comparedHashes(files));
}

// The likeliest file for a copy without a counterpart.
std::optional<std::size_t> fileFor(const FileReading& copy, std::span<const KnownFile> known) {
    std::optional<std::size_t> wanted;
    for (std::size_t position = 0; position < known.size(); ++position) {
        if (!needsFile(known[position], copy)) continue;
        if (known[position].hash == copy.hash) return position;
        if (!wanted) wanted = position;
    }
    return wanted;
}

} // namespace

std::string_view proofOutcomeName(ProofOutcome outcome) {
    constexpr std::array<std::string_view, proofOutcomeCount> names{
        "notLookedAt", "proven", "differs", "unreadable", "fileMissing", "incomplete"};
    return names.at(static_cast<std::size_t>(outcome));
}

ProofVerdict proofVerdict(std::span<const ProofCopy> copies, std::span<const ProofFile> files) {
    if (copies.empty() || files.empty()) return {};
    const std::vector<KnownFile> known = knownFiles(files);
    if (std::ranges::all_of(known, isLost)) return {ProofOutcome::fileMissing, pathOf(files.front())};
    ProofVerdict gravest{ProofOutcome::proven, {}};
    for (const ProofCopy& copy : copies) {
        ProofVerdict verdict = verdictOnCopy(copy, files, known);
        if (gravity(verdict.outcome) > gravity(gravest.outcome)) gravest = std::move(verdict);
    }
    return gravest;
}

bool lacksRecord(std::span<const ProofCopy> copies, std::span<const ProofFile> files) {
    const std::vector<KnownFile> known = knownFiles(files);
    return std::ranges::any_of(copies, [&](const ProofCopy& copy) {
        const FileReading* const reading = copy.reading;
        if (!mayBeAsRead(reading, copy.stamp) || reading->outcome != Outcome::complete) return false;
        const auto isOther = [&](const KnownFile& file) { return file.hash && *file.hash != reading->hash; };
        return std::ranges::all_of(known, isOther) &&
               counterpartOf(*reading, known).counterpart == Counterpart::notLookedAt;
    });
}

WantedReadings wantedReadings(std::span<const ProofCopy> copies, std::span<const ProofFile> files) {
    const std::vector<KnownFile> known = knownFiles(files);
    WantedReadings wanted;
    for (std::size_t position = 0; position < files.size(); ++position) {
        if (mayBeMended(files[position])) wanted.files.push_back(position);
    }
    if (std::ranges::all_of(known, isLost)) return wanted;
    for (std::size_t position = 0; position < copies.size(); ++position) {
        const FileReading* const reading = validReading(copies[position]);
        if (reading == nullptr || needsBody(*reading, known)) wanted.copies.push_back(position);
    }
    if (!wanted.copies.empty()) return wanted;
    for (const ProofCopy& copy : copies) {
        const FileReading& reading = *validReading(copy);
        if (reading.outcome != Outcome::complete) continue;
        if (counterpartOf(reading, known).counterpart == Counterpart::found) continue;
        const auto file = fileFor(reading, known);
        if (file && std::ranges::find(wanted.files, *file) == wanted.files.end())
            wanted.files.push_back(*file);
    }
    return wanted;
}

KnownHashes knownHashes(std::span<const ProofFile> files) {
    return comparedHashes(knownFiles(files));
}

bool isBodyHashNeeded(const Digest& hash, const KnownHashes& others) {
    return !others.empty() &&
           std::ranges::all_of(others, [&](const auto& other) { return other && *other != hash; });
}

} // namespace corvane
