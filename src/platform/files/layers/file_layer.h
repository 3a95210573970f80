// The file operations that archiving and saving are made of, behind one interface, so that tests can fail,
// delay or interrupt any of them. What must not be lost or be found half written goes through here: archives,
// settings, caches. SQLite writes by itself, and so does what can be thrown away: files in the temporary
// folder, lines of logs, the sample store, an empty folder that the folder picker makes.
//
// The calls that end in "At" name a file within a folder that is open: whatever is renamed, linked or mounted
// meanwhile, they reach that folder and no other one.
//
// Results follow POSIX: -1 and errno for a failure, EINTR and short counts included; a path with a NUL is
// EINVAL. Nothing throws. Implementations are called from several threads at once.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include <sys/stat.h>
#include <sys/types.h>

namespace corvane::platform {

// Gets the name and the raw d_type of an entry of a folder.
using EntryVisitor = std::function<void(std::string_view name, unsigned char dType)>;

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

    // fstat(2).
    virtual int statOpen(int descriptor, struct stat& result) = 0;

    // The whole file or folder for this process alone, without waiting: EWOULDBLOCK while another descriptor
    // has it, of whatever process. The lock goes with the descriptor.
    virtual int lock(int descriptor) = 0;

    // Visits the entries of an open folder but "." and "..", in the order of the disk and without a copy.
    virtual int list(int folder, const EntryVisitor& visit) = 0;

    virtual int openAt(int folder, const std::string& name, int flags, mode_t mode) = 0;

    // Of a link itself.
    virtual int statAt(int folder, const std::string& name, struct stat& result) = 0;
    virtual int makeDirectoryAt(int folder, const std::string& name, mode_t mode) = 0;

    // Both names are of one folder.
    virtual int renameAt(int folder, const std::string& from, const std::string& to) = 0;
    virtual int unlinkAt(int folder, const std::string& name) = 0;

    virtual int stat(const std::string& path, struct stat& result) = 0;
    virtual int makeDirectory(const std::string& path, mode_t mode) = 0;
    virtual int rename(const std::string& from, const std::string& to) = 0;
    virtual int unlink(const std::string& path) = 0;
};

// The operating system's own.
FileLayer& posixFileLayer();

} // namespace corvane::platform
