#include "listing/proof/proof_outcome.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "records/archived/content_hash.h"

namespace corvane {
namespace {

using Place = ProofFile::Place;
using Outcome = FileReading::Outcome;

constexpr FileStamp now{10, 5, 7};
constexpr FileStamp earlier{10, 5, 6}; // altered since, with its modification time set back

platform::Sha256Digest digest(char content) {
    return platform::sha256(std::string(1, content));
}

// What was read of a file, by one letter for all of its bytes and one for its body; no letter: not hashed.
struct Read {
    char content = 'a';
    char body = 0;
    FileStamp stamp = now;
    Outcome outcome = Outcome::complete;
};

FileReading readingOf(const Read& read) {
    FileReading reading{.stamp = read.stamp, .outcome = read.outcome};
    if (read.outcome != Outcome::unreadable) reading.hash = digest(read.content);
    if (read.body != 0) reading.bodyHash = digest(read.body);
    return reading;
}

struct Copy {
    std::optional<Read> read = Read{};
    FileStamp stamp = now;
};

struct File {
    char recorded = 'a'; // 0: a record without a hash
    std::optional<Read> read = Read{};
    Place place = Place::there;
    FileStamp stamp = now;
    std::int64_t recordedBytes = now.sizeBytes;
};

// Holds what copies and files refer to.
struct Subject {
    Subject(const std::vector<Copy>& sketchedCopies, const std::vector<File>& sketchedFiles) {
        for (const Copy& copy : sketchedCopies)
            copies.push_back({.path = "/copy", .stamp = copy.stamp, .reading = held(copy.read)});
        for (const File& file : sketchedFiles) {
            ArchivedEntry& entry = entries.emplace_back();
            entry.locationRootPath = "/archive";
            entry.record.emlRelativePath = "x.eml";
            entry.record.sizeBytes = file.recordedBytes;
            if (file.recorded != 0) entry.record.contentHash = contentHashText(digest(file.recorded));
            files.push_back({&entry, file.place, file.stamp, held(file.read)});
        }
    }

    const FileReading* held(const std::optional<Read>& read) {
        return read ? &readings.emplace_back(readingOf(*read)) : nullptr;
    }

    std::deque<FileReading> readings;
    std::deque<ArchivedEntry> entries;
    std::vector<ProofCopy> copies;
    std::vector<ProofFile> files;
};

const Read broken{.outcome = Outcome::unreadable};
const Read brokenBefore{.stamp = earlier, .outcome = Outcome::unreadable};
const Read lost{.stamp = unknownStamp, .outcome = Outcome::gone};
const Read cut{.outcome = Outcome::incomplete};

const Copy same;
const Copy unread{.read = {}};
const Copy changed{.read = Read{.stamp = earlier}};
const Copy unhashed{.read = Read{'b'}}; // other bytes, of whose body nothing is known
const Copy sameBody{.read = Read{'b', 'x'}};
const Copy otherBody{.read = Read{'b', 'y'}};
const Copy unreachable{.read = Read{.stamp = unknownStamp, .outcome = Outcome::unreadable},
                       .stamp = unknownStamp};

const File good;
const File withBody{.read = Read{'a', 'x'}};
const File unreadFile{.read = {}};
const File changedFile{.read = Read{.stamp = earlier}};
const File otherFile{.read = Read{'b'}};
const File otherSize{.read = {}, .stamp = {9, 5, 7}};
const File gone{.place = Place::gone};
const File away{.place = Place::outOfReach};
const File awayUnread{.read = {}, .place = Place::outOfReach};
const File noHash{.recorded = 0};
const File noHashUnread{.recorded = 0, .read = {}};
const File noHashWithBody{.recorded = 0, .read = Read{'a', 'x'}};

struct Case {
    const char* name;
    std::vector<Copy> copies;
    std::vector<File> files;
    ProofOutcome outcome;
    const char* path = "";
    std::string wanted{}; // "c" and "f" with positions
    bool lacksRecord = false;
};

TEST(ProofOutcomes, FollowFromWhatWasRead) {
    using enum ProofOutcome;
    const char* copy = "/copy";
    const char* file = "/archive/x.eml";
    const std::vector<Case> cases = {
        {"three agree", {same}, {good}, proven},
        {"a copy was never read", {unread}, {good}, notLookedAt, "", "c0"},
        {"a copy changed since", {changed}, {good}, notLookedAt, "", "c0"},
        {"the archived file was never read", {same}, {unreadFile}, notLookedAt, "", "f0"},
        {"the archived file changed since", {same}, {changedFile}, notLookedAt, "", "f0"},
        {"every copy counts", {same, unread}, {good}, notLookedAt, "", "c1"},
        {"same id, other content", {otherBody}, {withBody}, differs, copy},
        {"bodies were not compared yet", {unhashed}, {good}, notLookedAt, "", "c0", true},
        {"nor that of the file", {sameBody}, {good}, notLookedAt, "", "f0", true},
        {"another header only", {sameBody}, {withBody}, proven},
        {"one of two variants", {unhashed}, {good, {'b', Read{'b'}}}, proven},
        {"one copy of two differs", {same, otherBody}, {withBody}, differs, copy},
        {"differing outweighs a copy that can't be read", {{broken}, otherBody}, {withBody}, differs, copy},
        {"no file", {same}, {gone}, fileMissing, file},
        {"no file, and nothing read", {unread}, {gone}, fileMissing, file},
        {"other bytes than its record's", {same}, {otherFile}, fileMissing, file},
        {"another size than its record's", {same}, {otherSize}, fileMissing, file},
        {"one file of two archives is enough", {same}, {gone, good}, proven},
        {"out of reach, read before", {same}, {away}, proven},
        {"out of reach, never read", {same}, {awayUnread}, notLookedAt},
        {"out of reach, with another hash", {unhashed}, {awayUnread}, differs, copy},
        {"out of reach with other bytes", {same}, {{'a', Read{'b'}, Place::outOfReach}}, fileMissing, file},
        {"out of reach, gone before",
         {same},
         {{.read = lost, .place = Place::outOfReach}},
         fileMissing,
         file},
        {"out of reach, unreadable before",
         {same},
         {{.read = broken, .place = Place::outOfReach}},
         notLookedAt},
        {"there again", {same}, {{.read = lost}}, notLookedAt, "", "f0"},
        {"gone here, out of reach there", {same}, {gone, awayUnread}, notLookedAt},
        {"a record without a hash", {same}, {noHash}, proven},
        {"a record without a hash, not read", {same}, {noHashUnread}, notLookedAt, "", "f0"},
        {"a record without a hash, other content", {otherBody}, {noHashWithBody}, differs, copy},
        {"a copy that is cut off", {{cut}}, {good}, ProofOutcome::incomplete, copy},
        {"a copy that can't be read", {{broken}}, {good}, ProofOutcome::unreadable, copy},
        {"a copy that couldn't be read, of another mode now",
         {{brokenBefore}},
         {good},
         ProofOutcome::unreadable,
         copy,
         "c0"},
        {"a file that couldn't be read, of another mode now",
         {same},
         {{.read = brokenBefore}},
         ProofOutcome::unreadable,
         file,
         "f0"},
        {"a file that held something else, changed since",
         {same},
         {{.read = Read{.content = 'b', .stamp = earlier}}},
         ProofOutcome::fileMissing,
         file,
         "f0"},
        {"a copy that can't be looked at", {unreachable}, {good}, ProofOutcome::unreadable, copy},
        {"a file that can't be read", {same}, {{.read = broken}}, ProofOutcome::unreadable, file},
        {"a file that can't be read, and another", {same}, {{.read = broken}, good}, proven},
        {"no copy", {}, {good}, notLookedAt},
    };
    for (const Case& each : cases) {
        const Subject subject(each.copies, each.files);
        EXPECT_EQ(proofVerdict(subject.copies, subject.files), (ProofVerdict{each.outcome, each.path}))
            << each.name;
        std::string wanted;
        const WantedReadings next = wantedReadings(subject.copies, subject.files);
        for (const std::size_t position : next.copies) wanted += "c" + std::to_string(position);
        for (const std::size_t position : next.files) wanted += "f" + std::to_string(position);
        EXPECT_EQ(wanted, each.wanted) << each.name;
        EXPECT_EQ(lacksRecord(subject.copies, subject.files), each.lacksRecord) << each.name;
    }
}

// Where nothing is wanted any more, reading more can't have been forgotten: nothing stays unknown for ever.
TEST(ProofOutcomes, OnlyWhatIsOutOfReachStaysUnknown) {
    const std::vector<std::optional<Read>> reads = {std::nullopt,
                                                    Read{'a'},
                                                    Read{'a', 'x'},
                                                    Read{'b'},
                                                    Read{'b', 'x'},
                                                    Read{'b', 'y'},
                                                    Read{.stamp = earlier},
                                                    broken,
                                                    cut};
    for (const auto& copy : reads) {
        for (const auto& file : reads) {
            for (const auto& other : reads) {
                for (const char recorded : {'a', 'b', '\0'}) {
                    const Subject subject({{.read = copy}}, {{.recorded = recorded, .read = file},
                                                             {.recorded = 0, .read = other}});
                    const bool isUnknown =
                        proofVerdict(subject.copies, subject.files).outcome == ProofOutcome::notLookedAt;
                    const bool isWanted = !wantedReadings(subject.copies, subject.files).isEmpty();
                    // What stands against a file that has changed may be withdrawn by reading it again.
                    const bool hasChanged =
                        std::ranges::any_of(std::array{copy, file, other},
                                            [](const auto& read) { return read && read->stamp == earlier; });
                    EXPECT_TRUE(isUnknown == isWanted || (isWanted && hasChanged));
                }
            }
        }
    }
}

} // namespace
} // namespace corvane
