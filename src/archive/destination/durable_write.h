// Writing files whose originals may be deleted afterwards: a file counts only when its bytes have been forced
// to storage and were read back from there. All of it blocks; none of it has a time limit of its own. Paths
// may be relative to the folder of a platform::FolderFileLayer.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <string_view>

#include "platform/files/file_identity.h"
#include "platform/files/layers/file_layer.h"
#include "records/archived/file_readings.h"

namespace corvane::archive {

// Makes a new file of these bytes and flushes it (fsync); returns which file it is. Throws ArchiveError:
// writeFailed, also when anything is at the path already, a link included. What a failed write has made is
// removed.
platform::FileIdentity writePOSIXBlocking(platform::FileLayer& files, std::string_view bytes,
                                          const std::string& path);

// Removes the file, if it is this one.
void removeFile(platform::FileLayer& files, const std::string& path, const platform::FileIdentity& file);

enum class BeforeReading {
    nothing,
    flush, // forces the file to the storage; where that fails, the reading has failed
};

// Reads a regular file past the cache in pieces of at most 1 MiB, and links aren't followed. `onPiece` is
// called with each piece and returns whether to go on. False, with errno, when the file can't be read to its
// end. `stamp` is set to size and times of the file that was read; it may be null.
bool readUncached(platform::FileLayer& files, const std::string& path, BeforeReading before,
                  const std::function<bool(std::string_view)>& onPiece, FileStamp* stamp = nullptr);

enum class DiskContent {
    same,       // exactly the bytes
    unfinished, // what an interrupted write of the bytes leaves: a part from the start, or zeros in places
    other,
    unreadable,
};

struct DiskReading {
    DiskContent content = DiskContent::unreadable;
    FileStamp stamp; // zeros unless the content is the same
};

// Compares a file on the storage with the bytes. `onProgress` is called before each piece.
DiskReading contentOnDisk(platform::FileLayer& files, std::string_view bytes, const std::string& path,
                          BeforeReading before, const std::function<void()>& onProgress);

// The file's content on the storage is exactly these bytes.
bool verifyOnDisk(platform::FileLayer& files, std::string_view bytes, const std::string& path,
                  const std::function<void()>& onProgress = {});

// Flushes folders and files down to the medium, with fsync where there is nothing stronger. What fails is
// left.
void syncDirectories(platform::FileLayer& files, const std::set<std::string>& paths,
                     const std::function<void()>& onProgress = {});

// The same for an open folder. 0, or the errno of the failure; EIO also when only the weaker flush succeeded.
int syncDirectory(platform::FileLayer& files, int folder);

// Whether the file that lies there is served from memory whatever is done to read past the cache: to read it
// back then proves less than elsewhere. False where that can't be told.
bool staysInCache(platform::FileLayer& files, int folder, const std::string& relativePath);

} // namespace corvane::archive
