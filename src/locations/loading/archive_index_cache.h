// Copies of the archives' indexes in the support folder, by which the library shows disks that aren't
// connected. A value; touches disks, so it belongs on a background task.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "locations/loading/archive_digest.h"
#include "platform/platform.h"
#include "records/archive_files/archive_index_decoder.h"
#include "records/archived/archive_records.h"
#include "records/stores/app_support.h"

namespace corvane {

// What an earlier load of this process has read of one archive.
struct KnownIndex {
    std::optional<SourceStamp>
        stamp{}; // of the index whose records these are, all of them; absent: not known
    Date createdAt{};
    Date updatedAt{};
    KnownRecords records{};
};

// The index of each archive, as a load has read it: for the next one.
struct IndexState {
    SourceStamp stamp;
    Date createdAt{};
    Date updatedAt{};
    std::size_t count = 0; // of its records
};

using IndexStates = std::map<std::string, IndexState, std::less<>>; // by root

class ArchiveIndexCache {
  public:
    ArchiveIndexCache(const platform::Platform& platform, CorvaneAppSupport support)
      : platform_(platform)
      , support_(std::move(support)) {}

    // The index of a connected archive, copied into the cache; the copy of one that isn't connected. Absent
    // when there is none, it can't be read or is larger than an index may be: a connected archive with a
    // broken index has no other. `key` is the root. `onPiece` is called before each piece that is read. Of
    // what is known already, the text isn't read where its file and the copy are as they were, and else the
    // records share their texts.
    [[nodiscard]] std::optional<EmailArchiveIndex>
    loadIndexWithCache(const std::string& archiveRoot, std::string_view key, bool connected,
                       const std::function<void()>& onPiece = {}, const KnownIndex& known = {}) const;

    // The file of the copy; it need not exist.
    [[nodiscard]] std::string indexCachePath(std::string_view key) const;

    // The digest of the archive with what it is made from. Reading the index makes it.
    [[nodiscard]] ArchiveDigest::Files digestFiles(const std::string& root) const;

    // Keeps the number of the device on which the root is.
    void rememberDevice(std::string_view key, std::uint64_t device) const;

    // Where the root was when it was last there; absent when that isn't known.
    [[nodiscard]] std::optional<std::uint64_t> rememberedDevice(std::string_view key) const;

    // A folder that is gone while the disk on which it was is there: its files are gone, too.
    [[nodiscard]] bool isRootGone(const std::string& root) const;

    // Removes the copy, its digest and the device. A copy that can't be removed stays and goes on to stand
    // for the archive.
    void remove(std::string_view key) const;

  private:
    [[nodiscard]] std::optional<EmailArchiveIndex> loadConnected(const std::string& root,
                                                                 std::string_view key,
                                                                 const std::function<void()>& onPiece,
                                                                 const KnownIndex& known) const;
    [[nodiscard]] bool isAsKnown(const std::string& root, const KnownIndex& known) const;
    [[nodiscard]] std::optional<EmailArchiveIndex> loadCopy(const std::string& root, std::string_view key,
                                                            const std::function<void()>& onPiece,
                                                            const KnownRecords& known) const;
    void provideDigest(const std::string& root, const SourceStamp& index, bool isUsable) const;
    [[nodiscard]] std::string devicePath(std::string_view key) const;

    const platform::Platform& platform_;
    CorvaneAppSupport support_;
};

} // namespace corvane
