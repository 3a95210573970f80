#include "support/faulty_file_layer.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <ranges>
#include <system_error>

#include <fcntl.h>

#include "platform/files/directory.h"
#include "platform/paths.h"
#include "platform/threads/time_limited_worker.h"

namespace corvane::testing {

namespace {

bool has(const std::optional<Fault>& fault, Effect effect) {
    return fault && fault->effect == effect;
}

// Whether the operation fails, with errno as the fault has it.
bool prevents(const std::optional<Fault>& fault) {
    if (!fault || has(fault, Effect::shorten) || has(fault, Effect::corrupt)) return false;
    errno = fault->error;
    return true;
}

std::size_t shortened(std::size_t count) {
    return std::max<std::size_t>(count / 2, 1);
}

} // namespace

FaultyFileLayer::~FaultyFileLayer() {
    release();
    platform::waitForAbandonedJobs();
}

void FaultyFileLayer::inject(const Fault& fault) {
    const std::lock_guard lock(mutex_);
    faults_.push_back({fault});
}

std::size_t FaultyFileLayer::operationCount() const {
    const std::lock_guard lock(mutex_);
    return record_.size();
}

std::size_t FaultyFileLayer::operationCount(FileOperation operation) const {
    const std::lock_guard lock(mutex_);
    return static_cast<std::size_t>(std::ranges::count(record_, operation, &RecordedOperation::operation));
}

std::size_t FaultyFileLayer::operationCount(const std::string& path) const {
    const std::lock_guard lock(mutex_);
    return static_cast<std::size_t>(std::ranges::count_if(record_, [&](const RecordedOperation& operation) {
        return operation.path.find(path) != std::string::npos;
    }));
}

std::vector<RecordedOperation> FaultyFileLayer::record() const {
    const std::lock_guard lock(mutex_);
    return record_;
}

bool FaultyFileLayer::hasCrashed() const {
    const std::lock_guard lock(mutex_);
    return hasCrashed_;
}

void FaultyFileLayer::waitUntilHanging() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return hanging_ > 0; });
}

void FaultyFileLayer::release() {
    const std::lock_guard lock(mutex_);
    std::erase_if(faults_, [](const Pending& pending) { return pending.fault.effect == Effect::hang; });
    ++releases_;
    changed_.notify_all();
}

void FaultyFileLayer::losePower() {
    const std::lock_guard lock(mutex_);
    hasCrashed_ = true;
    for (const auto& path : unsynced_) std::ofstream(path, std::ios::trunc);
    for (const EntryChange& change : std::views::reverse(unsyncedEntries_)) undo(change);
    unsyncedEntries_.clear();
}

void FaultyFileLayer::undo(const EntryChange& change) {
    std::error_code ignored;
    if (change.from.empty()) {
        std::filesystem::remove_all(change.path, ignored);
    } else {
        std::filesystem::rename(change.path, change.from, ignored);
    }
    if (change.before) std::ofstream(change.path, std::ios::binary) << *change.before;
}

std::optional<Fault> FaultyFileLayer::dueFault(FileOperation operation, const std::string& path) {
    std::optional<Fault> due;
    for (Pending& pending : faults_) {
        if (pending.fault.operation.value_or(operation) != operation) continue;
        if (path.find(pending.fault.path) == std::string::npos) continue;
        ++pending.seen;
        const bool isDue = pending.fault.effect == Effect::failFromHere ? pending.seen >= pending.fault.at
                                                                        : pending.seen == pending.fault.at;
        if (isDue) due = pending.fault;
    }
    return due;
}

std::optional<Fault> FaultyFileLayer::begin(FileOperation operation, const std::string& path) {
    const RecordedOperation recorded{operation, path};
    if (observer_) observer_(recorded);
    std::unique_lock lock(mutex_);
    record_.push_back(recorded);
    const Fault afterCrash{.at = 0, .effect = Effect::fail, .operation = {}, .error = EIO};
    if (hasCrashed_) return afterCrash;
    auto fault = dueFault(operation, path);
    if (!fault) return fault;
    if (fault->effect == Effect::crash) {
        hasCrashed_ = true;
        fault->error = EIO;
    } else if (fault->effect == Effect::hang) {
        ++hanging_;
        changed_.notify_all();
        changed_.wait(lock, [this, earlier = releases_] { return releases_ != earlier; });
        --hanging_;
        if (hasCrashed_) return afterCrash;
        fault.reset();
    }
    return fault;
}

std::string FaultyFileLayer::pathOf(int descriptor) const {
    const std::lock_guard lock(mutex_);
    const auto found = openPaths_.find(descriptor);
    return found == openPaths_.end() ? std::string() : found->second;
}

std::string FaultyFileLayer::pathIn(int folder, const std::string& name) const {
    if (folder == AT_FDCWD) return name;
    return name == "." ? pathOf(folder) : platform::joinPath(pathOf(folder), name);
}

int FaultyFileLayer::open(const std::string& path, int flags, mode_t mode) {
    return opened(path, flags, [&] { return real_.open(path, flags, mode); });
}

int FaultyFileLayer::openAt(int folder, const std::string& name, int flags, mode_t mode) {
    return opened(pathIn(folder, name), flags, [&] { return real_.openAt(folder, name, flags, mode); });
}

int FaultyFileLayer::opened(const std::string& path, int flags, const std::function<int()>& call) {
    if (prevents(begin(FileOperation::open, path))) return -1;
    struct stat status{};
    const bool isMade = (flags & O_CREAT) != 0 && ::lstat(path.c_str(), &status) != 0;
    const int descriptor = call();
    const std::lock_guard lock(mutex_);
    if (descriptor < 0) return descriptor;
    openPaths_[descriptor] = path;
    if (isMade) unsyncedEntries_.push_back({.path = path});
    if ((flags & O_TRUNC) != 0) unsynced_.insert(path);
    return descriptor;
}

ssize_t FaultyFileLayer::write(int descriptor, const void* bytes, std::size_t count) {
    const std::string path = pathOf(descriptor);
    const auto fault = begin(FileOperation::write, path);
    if (!has(fault, Effect::crash) && prevents(fault)) return -1;
    {
        const std::lock_guard lock(mutex_);
        unsynced_.insert(path);
    }
    std::string content(static_cast<const char*>(bytes), count);
    if (has(fault, Effect::crash)) content.resize(count / 2);
    if (has(fault, Effect::shorten)) content.resize(shortened(count));
    if (has(fault, Effect::corrupt) && count > 0) content[0] ^= 1;
    const ssize_t written = real_.write(descriptor, content.data(), content.size());
    return prevents(fault) ? -1 : written;
}

ssize_t FaultyFileLayer::read(int descriptor, void* bytes, std::size_t count) {
    const auto fault = begin(FileOperation::read, pathOf(descriptor));
    if (prevents(fault)) return -1;
    if (has(fault, Effect::shorten)) count = shortened(count);
    const ssize_t got = real_.read(descriptor, bytes, count);
    if (has(fault, Effect::corrupt) && got > 0) *static_cast<char*>(bytes) ^= 1;
    return got;
}

// The descriptor is really closed in every case, as it is after a failed close().
int FaultyFileLayer::close(int descriptor) {
    const auto fault = begin(FileOperation::close, pathOf(descriptor));
    {
        const std::lock_guard lock(mutex_);
        openPaths_.erase(descriptor);
    }
    const int result = real_.close(descriptor);
    return prevents(fault) ? -1 : result;
}

int FaultyFileLayer::synced(FileOperation operation, int descriptor, int (platform::FileLayer::*call)(int)) {
    const std::string path = pathOf(descriptor);
    if (prevents(begin(operation, path))) return -1;
    const int result = (real_.*call)(descriptor);
    const std::lock_guard lock(mutex_);
    if (result != 0) return result;
    unsynced_.erase(path);
    std::erase_if(unsyncedEntries_,
                  [&](const EntryChange& change) { return platform::parentPath(change.path) == path; });
    return result;
}

int FaultyFileLayer::sync(int descriptor) {
    return synced(FileOperation::sync, descriptor, &platform::FileLayer::sync);
}

int FaultyFileLayer::fullSync(int descriptor) {
    return synced(FileOperation::fullSync, descriptor, &platform::FileLayer::fullSync);
}

void FaultyFileLayer::bypassCache(int descriptor) {
    if (!prevents(begin(FileOperation::bypassCache, pathOf(descriptor)))) real_.bypassCache(descriptor);
}

int FaultyFileLayer::statOpen(int descriptor, struct stat& result) {
    return prevents(begin(FileOperation::stat, pathOf(descriptor))) ? -1 : real_.statOpen(descriptor, result);
}

int FaultyFileLayer::lock(int descriptor) {
    return prevents(begin(FileOperation::lock, pathOf(descriptor))) ? -1 : real_.lock(descriptor);
}

int FaultyFileLayer::list(int folder, const platform::EntryVisitor& visit) {
    return prevents(begin(FileOperation::list, pathOf(folder))) ? -1 : real_.list(folder, visit);
}

int FaultyFileLayer::stat(const std::string& path, struct stat& result) {
    return prevents(begin(FileOperation::stat, path)) ? -1 : real_.stat(path, result);
}

int FaultyFileLayer::statAt(int folder, const std::string& name, struct stat& result) {
    const bool isPrevented = prevents(begin(FileOperation::stat, pathIn(folder, name)));
    return isPrevented ? -1 : real_.statAt(folder, name, result);
}

int FaultyFileLayer::makeDirectory(const std::string& path, mode_t mode) {
    return madeDirectory(path, [&] { return real_.makeDirectory(path, mode); });
}

int FaultyFileLayer::makeDirectoryAt(int folder, const std::string& name, mode_t mode) {
    return madeDirectory(pathIn(folder, name), [&] { return real_.makeDirectoryAt(folder, name, mode); });
}

int FaultyFileLayer::madeDirectory(const std::string& path, const std::function<int()>& call) {
    if (prevents(begin(FileOperation::makeDirectory, path))) return -1;
    const int result = call();
    const std::lock_guard lock(mutex_);
    if (result == 0) unsyncedEntries_.push_back({.path = path});
    return result;
}

int FaultyFileLayer::rename(const std::string& from, const std::string& to) {
    return renamed(from, to, [&] { return real_.rename(from, to); });
}

int FaultyFileLayer::renameAt(int folder, const std::string& from, const std::string& to) {
    return renamed(pathIn(folder, from), pathIn(folder, to),
                   [&] { return real_.renameAt(folder, from, to); });
}

int FaultyFileLayer::renamed(const std::string& from, const std::string& to,
                             const std::function<int()>& call) {
    if (prevents(begin(FileOperation::rename, from))) return -1;
    EntryChange done{to, from, platform::readFile(to)};
    const int result = call();
    const std::lock_guard lock(mutex_);
    if (result != 0) return result;
    unsyncedEntries_.push_back(std::move(done));
    unsynced_.erase(to);
    if (unsynced_.erase(from) > 0) unsynced_.insert(to);
    return result;
}

int FaultyFileLayer::unlink(const std::string& path) {
    return unlinked(path, [&] { return real_.unlink(path); });
}

int FaultyFileLayer::unlinkAt(int folder, const std::string& name) {
    return unlinked(pathIn(folder, name), [&] { return real_.unlinkAt(folder, name); });
}

int FaultyFileLayer::unlinked(const std::string& path, const std::function<int()>& call) {
    if (prevents(begin(FileOperation::unlink, path))) return -1;
    EntryChange done{path, {}, platform::readFile(path)};
    const int result = call();
    const std::lock_guard lock(mutex_);
    if (result != 0) return result;
    if (done.before) unsyncedEntries_.push_back(std::move(done));
    unsynced_.erase(path);
    return result;
}

} // namespace corvane::testing
