// Whether a message may be deleted because an archive holds it: derived from what was read of its copies in
// Mail's store and of the files that archives hold under its id, never kept. Proven is an agreement of three:
// the bytes of a copy, the hash in a record, and the bytes of that record's file as they were read back. Pure
// functions, any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "records/archived/archive_records.h"
#include "records/archived/file_readings.h"

namespace corvane {

enum class ProofOutcome : std::uint8_t {
    notLookedAt, // nothing is known against it, and not enough for it
    proven,      // every copy that is there has its bytes, or its body, in a file of an archive
    differs,     // a copy has bytes that no file of an archive has
    unreadable,  // a copy, or a file that might be its counterpart, can't be read or looked at
    fileMissing, // no record's file is there with the record's bytes
    incomplete,  // a copy is shorter than it says, or empty
};

constexpr std::size_t proofOutcomeCount = 6;

// The word for files and commands: "notLookedAt", "proven" and so on.
std::string_view proofOutcomeName(ProofOutcome outcome);

// Whether a message with the id of an archived one counts as archived.
constexpr bool countsAsArchived(ProofOutcome outcome) {
    return outcome == ProofOutcome::notLookedAt || outcome == ProofOutcome::proven;
}

// Whether such a message can be archived again. What can't be read, or isn't whole, would be offered for
// ever.
constexpr bool isOfferedAgain(ProofOutcome outcome) {
    return outcome == ProofOutcome::differs || outcome == ProofOutcome::fileMissing;
}

// A copy of the message that is there.
struct ProofCopy {
    std::string_view path;
    FileStamp stamp;
    const FileReading* reading = nullptr; // the last one; null for a copy that was never read
    std::uint64_t placeOnDisk = 0;        // files of near numbers tend to lie near each other
};

// The file of one record that has the message's base id.
struct ProofFile {
    enum class Place {
        there,
        gone,       // its archive answered, and it isn't there
        unseen,     // its archive answered, but nobody may look whether it is there
        outOfReach, // its archive doesn't answer, or the file is in the cloud only: its last reading stands
    };

    const ArchivedEntry* entry = nullptr;
    Place place = Place::outOfReach;
    FileStamp stamp;                      // of a file that is there
    const FileReading* reading = nullptr; // the last one; null for a file that was never read
};

struct ProofVerdict {
    ProofOutcome outcome = ProofOutcome::notLookedAt;
    std::string path; // of what stands against the message: a copy, or an archived file; else empty

    friend bool operator==(const ProofVerdict&, const ProofVerdict&) = default;
};

// Of a message with copies and records; `notLookedAt` where there are none of either.
ProofVerdict proofVerdict(std::span<const ProofCopy> copies, std::span<const ProofFile> files);

// Whether a copy that was read has bytes of which no record tells, though nobody has compared the bodies: a
// file with its body may be there, or was taken out of the archive.
bool lacksRecord(std::span<const ProofCopy> copies, std::span<const ProofFile> files);

// What has to be read next to come nearer to a verdict, as positions. Copies come first: when there are any,
// no file is named, since which files are needed depends on them. Empty when reading can't change anything.
struct WantedReadings {
    std::vector<std::size_t> copies;
    std::vector<std::size_t> files;

    [[nodiscard]] bool isEmpty() const { return copies.empty() && files.empty(); }
};

WantedReadings wantedReadings(std::span<const ProofCopy> copies, std::span<const ProofFile> files);

// What the bytes of files are known by that copies can be compared with; absent where a record has no hash
// and its file wasn't read yet.
using KnownHashes = std::vector<std::optional<platform::Sha256Digest>>;
KnownHashes knownHashes(std::span<const ProofFile> files);

// Whether bytes with this hash can only be compared by their body: none of the others has it, and each is
// known.
bool isBodyHashNeeded(const platform::Sha256Digest& hash, const KnownHashes& others);

} // namespace corvane
