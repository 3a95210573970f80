// Copies of the archives' indexes in the support folder, by which the library shows disks that aren't
// connected. A value; touches disks, so it belongs on a background task.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/platform.h"
#include "records/archive_records.h"
#include "records/stores/app_support.h"

namespace corvane {

class ArchiveIndexCache {
  public:
    ArchiveIndexCache(const platform::Platform& platform, CorvaneAppSupport support)
      : platform_(platform)
      , support_(std::move(support)) {}

    // The index of a connected archive, copied into the cache; the copy of one that isn't connected. Absent
    // when there is none or it can't be read: a connected archive with a broken index has no other. `key` is
    // the root.
    [[nodiscard]] std::optional<EmailArchiveIndex>
    loadIndexWithCache(const std::string& archiveRoot, std::string_view key, bool connected) const;

    // The file of the copy; it need not exist.
    [[nodiscard]] std::string indexCachePath(std::string_view key) const;

    // Removes the copy. One that can't be removed stays and goes on to stand for the archive.
    void remove(std::string_view key) const;

  private:
    void store(std::string_view key, const std::string& content) const;

    const platform::Platform& platform_;
    CorvaneAppSupport support_;
};

} // namespace corvane
