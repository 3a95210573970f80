// A file layer over the real one that fails, shortens, falsifies, holds up or ends chosen operations, and
// keeps a record of all. Thread-safe. It has to outlive every thread that uses it.
//
//     FaultyFileLayer files;
//     files.inject({.at = 3, .effect = Effect::fail, .operation = FileOperation::write, .error = ENOSPC});
//
// To interrupt something at each of its operations: run it once to learn operationCount(), then once for each
// k with Effect::crash at k, and losePower() before looking at what is left.
#pragma once

#include <cerrno>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/files/layers/file_layer.h"

namespace corvane::testing {

enum class FileOperation {
    open,
    write,
    read,
    close,
    sync,
    fullSync,
    bypassCache,
    stat,
    makeDirectory,
    rename,
    unlink,
    list,
    lock
};

enum class Effect {
    fail,         // -1 with `error`, and nothing happens
    failFromHere, // this operation and all later ones that the fault applies to
    shorten,      // a read or write moves half of its bytes (at least one)
    corrupt,      // a read or write moves its bytes with one bit of the first one changed, and succeeds
    hang,         // blocks until release(), then goes on as usual
    crash,        // a write stops half way; from here on no operation has an effect, and all fail with EIO
};

struct Fault {
    std::size_t at = 1; // counts from 1, among the operations that the fault applies to
    Effect effect = Effect::fail;
    std::optional<FileOperation> operation{}; // nothing: any
    int error = EIO;
    std::string path{}; // only operations on paths that contain this text
};

struct RecordedOperation {
    FileOperation operation;
    // Of the descriptor's open, for an operation on one; below the folder, for one in an open folder.
    std::string path;
};

class FaultyFileLayer final : public platform::FileLayer {
  public:
    explicit FaultyFileLayer(platform::FileLayer& real = platform::posixFileLayer())
      : real_(real) {}

    // Waits for abandoned jobs, which may still use it.
    ~FaultyFileLayer() override;

    // Counts from now on, whatever came before.
    void inject(const Fault& fault);

    // Called before each operation, on its thread and without a lock; set it before any operation.
    void observe(std::function<void(const RecordedOperation&)> observer) { observer_ = std::move(observer); }

    [[nodiscard]] std::size_t operationCount() const;
    [[nodiscard]] std::size_t operationCount(FileOperation operation) const;
    [[nodiscard]] std::size_t operationCount(const std::string& path) const; // as Fault::path has it
    [[nodiscard]] std::vector<RecordedOperation> record() const;
    [[nodiscard]] bool hasCrashed() const;

    void waitUntilHanging(); // for the first operation that hangs
    void release();          // lets all that hang go on, and takes such faults away

    // Ends the layer as a crash does, and with it what only the cache held: files with writes that no sync
    // followed are cut to nothing; files and folders that were made, renamed or removed are as before, and
    // what lies in a new folder is gone with it, unless a sync of the folder around them followed.
    void losePower();

    int open(const std::string& path, int flags, mode_t mode) override;
    ssize_t write(int descriptor, const void* bytes, std::size_t count) override;
    ssize_t read(int descriptor, void* bytes, std::size_t count) override;
    int close(int descriptor) override;
    int sync(int descriptor) override;
    int fullSync(int descriptor) override;
    void bypassCache(int descriptor) override;
    int statOpen(int descriptor, struct stat& result) override;
    int lock(int descriptor) override;
    int list(int folder, const platform::EntryVisitor& visit) override;
    int openAt(int folder, const std::string& name, int flags, mode_t mode) override;
    int statAt(int folder, const std::string& name, struct stat& result) override;
    int makeDirectoryAt(int folder, const std::string& name, mode_t mode) override;
    int renameAt(int folder, const std::string& from, const std::string& to) override;
    int unlinkAt(int folder, const std::string& name) override;
    int stat(const std::string& path, struct stat& result) override;
    int makeDirectory(const std::string& path, mode_t mode) override;
    int rename(const std::string& from, const std::string& to) override;
    int unlink(const std::string& path) override;

  private:
    struct Pending {
        Fault fault;
        std::size_t seen = 0;
    };

    // An entry of a folder that came or went.
    struct EntryChange {
        std::string path;
        std::string from{};                  // for a rename
        std::optional<std::string> before{}; // the content that was at `path`
    };

    // The effect on this operation, after a hang if there is one. `crash` for every one after a crash.
    std::optional<Fault> begin(FileOperation operation, const std::string& path);
    std::optional<Fault> dueFault(FileOperation operation, const std::string& path);
    std::string pathOf(int descriptor) const;
    std::string pathIn(int folder, const std::string& name) const;
    static void undo(const EntryChange& change);

    // Each does the operation `call` on that path.
    int opened(const std::string& path, int flags, const std::function<int()>& call);
    int madeDirectory(const std::string& path, const std::function<int()>& call);
    int renamed(const std::string& from, const std::string& to, const std::function<int()>& call);
    int unlinked(const std::string& path, const std::function<int()>& call);
    int synced(FileOperation operation, int descriptor, int (platform::FileLayer::*call)(int));

    platform::FileLayer& real_;
    std::function<void(const RecordedOperation&)> observer_;
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<Pending> faults_;
    std::vector<RecordedOperation> record_;
    std::map<int, std::string> openPaths_;
    std::set<std::string> unsynced_;
    std::vector<EntryChange> unsyncedEntries_;
    std::size_t hanging_ = 0;
    std::size_t releases_ = 0;
    bool hasCrashed_ = false;
};

} // namespace corvane::testing
