// Writing files whose originals may be deleted afterwards: a file counts only when its bytes have been forced
// to storage and were read back from there. All of it blocks; none of it has a time limit of its own.
#pragma once

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <string_view>

#include "platform/files/file_layer.h"

namespace corvane::archive {

// Makes a new file of these bytes and flushes it (fsync). Throws ArchiveError: writeFailed, also when
// anything is at the path already, a link included. What a failed write leaves isn't removed.
void writePOSIXBlocking(platform::FileLayer& files, std::string_view bytes, const std::string& path);

// Reads a regular file past the cache in pieces of at most 1 MiB, and links aren't followed. `take` gets each
// piece and returns whether to go on. False when the file can't be read to its end. `flush` forces the file
// to storage first, and its failure is one too.
enum class BeforeReading { nothing, flush };
bool readUncached(platform::FileLayer& files, const std::string& path, BeforeReading before,
                  const std::function<bool(std::string_view)>& take);

enum class DiskContent {
    same,       // exactly the bytes
    unfinished, // what an interrupted write of the bytes leaves: a part from the start, or zeros in places
    other,
    unreadable,
};

// Compares a file on the storage with the bytes. `onProgress` is called before each piece.
DiskContent contentOnDisk(platform::FileLayer& files, std::string_view bytes, const std::string& path,
                          BeforeReading before, const std::function<void()>& onProgress);

// The file's content on the storage is exactly these bytes.
bool verifyOnDisk(platform::FileLayer& files, std::string_view bytes, const std::string& path,
                  const std::function<void()>& onProgress = {});

// Flushes folders and files down to the medium, with fsync where there is nothing stronger. What fails is
// left.
void syncDirectories(platform::FileLayer& files, const std::set<std::string>& paths,
                     const std::function<void()>& onProgress = {});

} // namespace corvane::archive
