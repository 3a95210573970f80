// The file operations that archiving and saving are made of, behind one interface, so that tests can fail,
// delay or interrupt any of them. What must not be lost or be found half written goes through here: archives,
// settings, caches. SQLite writes by itself, and so does what can be thrown away: files in the temporary
// folder, lines of logs, the sample store, an empty folder that the folder picker makes.
//
// Results follow POSIX: -1 and errno for a failure, EINTR and short counts included; a path with a NUL is
// EINVAL. Nothing throws. Implementations are called from several threads at once.
#pragma once

#include <cstddef>
#include <string>

#include <sys/stat.h>
#include <sys/types.h>

namespace corvane::platform {

class FileLayer {
  public:
    virtual ~FileLayer() = default;

    // The descriptor is close-on-exec.
    virtual int open(const std::string& path, int flags, mode_t mode) = 0;
    virtual ssize_t write(int descriptor, const void* bytes, std::size_t count) = 0;
    virtual ssize_t read(int descriptor, void* bytes, std::size_t count) = 0;
    virtual int close(int descriptor) = 0;

    // fsync(2).
    virtual int sync(int descriptor) = 0;

    // The strongest flush that the system has, down to the medium.
    virtual int fullSync(int descriptor) = 0;

    // Makes the next reads of the descriptor come from the storage and not from the cache of the write, as
    // far as the system can: the file's pages are dropped after they are clean. Failure is not an error.
    virtual void bypassCache(int descriptor) = 0;

    virtual int stat(const std::string& path, struct stat& result) = 0;
    virtual int makeDirectory(const std::string& path, mode_t mode) = 0;
    virtual int rename(const std::string& from, const std::string& to) = 0;
    virtual int unlink(const std::string& path) = 0;
};

// The operating system's own.
FileLayer& posixFileLayer();

} // namespace corvane::platform
