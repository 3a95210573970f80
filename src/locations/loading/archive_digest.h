// What finds single mails of an archive without reading its index: where each record stands in the local copy
// of the index, by handle, by record id and with its date. Lies beside that copy, is made by whoever reads
// the index, and holds for as long as both files are those it was made from. What it names is looked at in
// the copy, and believed only where the record there is the one that was meant.
//
// Touches the disk. One thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <sys/stat.h>

#include "platform/files/layers/file_layer.h"
#include "records/archived/archive_records.h"
#include "records/archived/entry_handle.h"
#include "records/archived/presence_signature.h"
#include "records/stores/derived_file.h"
#include "text/shared_text.h"

namespace corvane {

// Which state of a file something was made from.
struct SourceStamp {
    std::int64_t sizeBytes = 0;
    std::int64_t modifiedNanoseconds = 0; // since 1970
    std::uint64_t inode = 0;

    static SourceStamp of(const struct stat& status);

    friend bool operator==(const SourceStamp&, const SourceStamp&) = default;
};

// The digest doesn't fit what it was made from.
class DigestMisfit : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

class ArchiveDigest {
  public:
    using Position = std::uint32_t; // in the index, of the records that count

    // The digest's own file and those it is made from.
    struct Files {
        std::string digest;
        std::string copy;
        std::string index;
    };

    // Makes the digest of a copy that has just been compared with the index. `indexStamp` is of the index
    // when it was read. Failures are ignored: the archive then has no digest.
    static void make(platform::FileLayer& layer, const Files& files, const std::string& root,
                     const SourceStamp& indexStamp);

    // Makes one that says that this state of the index can't be used, whatever the copy holds.
    static void makeOfUnusableIndex(platform::FileLayer& layer, const Files& files, const std::string& root,
                                    const SourceStamp& indexStamp);

    // Absent when there is none, or it isn't that of this copy. Says nothing of the index itself.
    static std::optional<ArchiveDigest> open(const Files& files, const std::string& root);

    // Whether it was made from that state of the index, for who has just read it.
    [[nodiscard]] bool isOf(const SourceStamp& index) const;

    // The same for everybody else: a time that was young then may hide a later change.
    [[nodiscard]] bool fits(const SourceStamp& index) const;

    // It names no records: its index has none that could be read.
    [[nodiscard]] bool isOfUnusableIndex() const;

    [[nodiscard]] Date createdAt() const;

    [[nodiscard]] std::size_t count() const { return count_; }

    // Whether the record ids of one are among those of the other, by what the digests know of them: that two
    // ids are taken for one isn't to be expected, and would be no help to who wants to hide an archive.
    [[nodiscard]] bool sharesIDsWith(const ArchiveDigest& other) const;

    // Of its entries.
    [[nodiscard]] PresenceSignature presenceSignature() const;

    // Of records whose handle lies in the range, in its order.
    [[nodiscard]] std::vector<Position> withHandle(const HandleRange& range) const;

    // Absent without one. Throws DigestMisfit.
    [[nodiscard]] std::optional<Position> withRecordID(std::string_view id) const;

    // A record id that is looked for, by its number in a list.
    struct WantedID {
        std::uint64_t hash = 0;
        std::size_t number = 0;
    };

    // Ordered by what the digest is ordered by.
    static std::vector<WantedID> wantedIDs(const std::vector<SharedText>& recordIDs);

    // Calls visit(position, number) for each record that may have one of the ids; whether it has, its entry
    // tells.
    template <class Visit>
    void forEachWithRecordID(const std::vector<WantedID>& wanted, const Visit& visit) const {
        std::size_t at = 0;
        for (const WantedID& id : wanted) {
            at = firstRecordID(at, id.hash);
            for (std::size_t i = at; i < count_; ++i) {
                const auto position = positionOfRecordID(i, id.hash);
                if (!position) break;
                visit(*position, id.number);
            }
        }
    }

    // Digits by which the handle differs from each other one of the archive.
    [[nodiscard]] std::size_t digitsNeeded(std::uint64_t handle) const;

    [[nodiscard]] std::optional<Date> date(Position position) const;

    // Throws DigestMisfit.
    [[nodiscard]] ArchivedEntry entry(Position position) const;

  private:
    struct Head;
    struct Place;
    struct Row;

    ArchiveDigest(DerivedFile file, std::string root, std::string copyPath, std::size_t count);
    [[nodiscard]] std::size_t headBytes() const;
    [[nodiscard]] Place placeAt(std::size_t table, std::size_t index) const;
    // The first place of that table within the range whose hash isn't below; `end` for none.
    [[nodiscard]] std::size_t lowerBound(std::size_t table, std::uint64_t hash, std::size_t begin,
                                         std::size_t end) const;

    // The same from `begin` on, quickly where it is near.
    [[nodiscard]] std::size_t firstRecordID(std::size_t begin, std::uint64_t hash) const;

    // Absent where that place has another hash.
    [[nodiscard]] std::optional<Position> positionOfRecordID(std::size_t place, std::uint64_t hash) const;
    [[nodiscard]] Row rowAt(Position position) const;

    DerivedFile file_;
    std::string root_;
    std::string copyPath_;
    std::size_t count_;
    mutable std::ifstream copy_; // open once a record was read
};

} // namespace corvane
