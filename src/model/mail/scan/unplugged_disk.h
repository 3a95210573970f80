// Whether the disk of Mail's store was unplugged while a scan read it, or another one came in its place. Of a
// disk that was taken away every folder looks empty, so its mail would seem to be on the server only; a scan
// that has seen this breaks off and publishes nothing. A value; touches the disk, on a background thread.
#pragma once

#include <string>

#include "platform/files/file_look.h"

namespace corvane {

// For the user.
inline constexpr const char* unpluggedDiskMessage =
    "扫描期间 Mail 数据所在的位置变得不可用。请确认磁盘已连接，再重新扫描。";

class ScannedDisk {
  public:
    // Looks where the store is now, at the beginning of a scan.
    explicit ScannedDisk(std::string rootPath);

    // Whether there was a store.
    [[nodiscard]] bool hasStore() const;

    // Looks again: whether the store isn't the one of the beginning, or nobody can say.
    [[nodiscard]] bool wasUnplugged() const;

  private:
    std::string rootPath_;
    platform::FileLook begin_;
};

} // namespace corvane
