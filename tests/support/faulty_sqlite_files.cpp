#include "support/faulty_sqlite_files.h"

#include <atomic>
#include <stdexcept>

#include <sqlite3.h>

namespace corvane::testing {

// https://sqlite.org/vfs.html. The layer answers for opening and deleting, and hands everything else to the
// one below it.
struct FaultySqliteFiles::State {
    sqlite3_vfs vfs{};
    sqlite3_vfs* below = nullptr;
    std::atomic<int> left = 0; // operations until the one that fails; 0 for none
    std::atomic<bool> isLasting = false;
    std::atomic<bool> hasFailed = false;
    std::atomic<SqliteFault> fault = SqliteFault::error;

    bool fails(SqliteFault kind) {
        const SqliteFault wanted = fault;
        if (wanted != SqliteFault::error && wanted != kind) return false;
        if (hasFailed && isLasting) return true;
        if (left <= 0 || left.fetch_sub(1) != 1) return false;
        hasFailed = true;
        return true;
    }

    [[nodiscard]] int codeOr(int code) const { return fault == SqliteFault::full ? SQLITE_FULL : code; }
};

namespace {

using State = FaultySqliteFiles::State;

// SQLite allocates it, with the file of the layer below behind it.
struct File {
    sqlite3_file base;
    State* state;

    sqlite3_file* real() { return reinterpret_cast<sqlite3_file*>(this + 1); }
};

File& asFile(sqlite3_file* file) {
    return *reinterpret_cast<File*>(file);
}

constexpr SqliteFault anyFault = SqliteFault::error;

// An operation of a file: fails with the code if it is to, and goes on to the layer below otherwise.
template <auto method, SqliteFault kind, int code, class... Arguments>
int guarded(sqlite3_file* base, Arguments... arguments) {
    File& file = asFile(base);
    if (file.state->fails(kind)) return file.state->codeOr(code);
    sqlite3_file* real = file.real();
    return (real->pMethods->*method)(real, arguments...);
}

template <auto method, class... Arguments>
auto passed(sqlite3_file* base, Arguments... arguments) {
    sqlite3_file* real = asFile(base).real();
    return (real->pMethods->*method)(real, arguments...);
}

int sync(sqlite3_file* base, int /*flags*/) {
    return asFile(base).state->fails(anyFault) ? SQLITE_IOERR_FSYNC : SQLITE_OK;
}

// Giving up a lock never fails: the others would wait for it.
int lockShared(sqlite3_file* base, int offset, int count, int flags) {
    File& file = asFile(base);
    if ((flags & SQLITE_SHM_LOCK) != 0 && file.state->fails(SqliteFault::lockLost)) return SQLITE_IOERR_LOCK;
    return file.real()->pMethods->xShmLock(file.real(), offset, count, flags);
}

using Methods = sqlite3_io_methods;

// No memory mapping: version 2.
constexpr Methods methods = {
    .iVersion = 2,
    .xClose = passed<&Methods::xClose>,
    .xRead = guarded<&Methods::xRead, anyFault, SQLITE_IOERR_READ>,
    .xWrite = guarded<&Methods::xWrite, SqliteFault::full, SQLITE_IOERR_WRITE>,
    .xTruncate = guarded<&Methods::xTruncate, anyFault, SQLITE_IOERR_TRUNCATE>,
    .xSync = sync,
    .xFileSize = guarded<&Methods::xFileSize, anyFault, SQLITE_IOERR_FSTAT>,
    .xLock = guarded<&Methods::xLock, SqliteFault::lockLost, SQLITE_IOERR_LOCK>,
    .xUnlock = passed<&Methods::xUnlock>,
    .xCheckReservedLock = guarded<&Methods::xCheckReservedLock, SqliteFault::lockLost, SQLITE_IOERR_LOCK>,
    .xFileControl = passed<&Methods::xFileControl>,
    .xSectorSize = passed<&Methods::xSectorSize>,
    .xDeviceCharacteristics = passed<&Methods::xDeviceCharacteristics>,
    .xShmMap = guarded<&Methods::xShmMap, SqliteFault::full, SQLITE_IOERR_SHMMAP>,
    .xShmLock = lockShared,
    .xShmBarrier = passed<&Methods::xShmBarrier>,
    .xShmUnmap = passed<&Methods::xShmUnmap>,
    .xFetch = nullptr,
    .xUnfetch = nullptr,
};

State& stateOf(sqlite3_vfs* vfs) {
    return *static_cast<State*>(vfs->pAppData);
}

int openFile(sqlite3_vfs* vfs, const char* name, sqlite3_file* base, int flags, int* outFlags) {
    State& state = stateOf(vfs);
    File& file = asFile(base);
    file.base.pMethods = nullptr;
    file.state = &state;
    if (state.fails(anyFault)) return SQLITE_CANTOPEN;
    const int result = state.below->xOpen(state.below, name, file.real(), flags, outFlags);
    if (file.real()->pMethods != nullptr) file.base.pMethods = &methods;
    return result;
}

int deleteFile(sqlite3_vfs* vfs, const char* name, int syncsFolder) {
    State& state = stateOf(vfs);
    if (state.fails(anyFault)) return SQLITE_IOERR_DELETE;
    return state.below->xDelete(state.below, name, syncsFolder);
}

int accessFile(sqlite3_vfs* vfs, const char* name, int flags, int* answer) {
    State& state = stateOf(vfs);
    if (state.fails(anyFault)) return SQLITE_IOERR_ACCESS;
    return state.below->xAccess(state.below, name, flags, answer);
}

} // namespace

FaultySqliteFiles::FaultySqliteFiles()
  : state_(std::make_unique<State>()) {
    state_->below = sqlite3_vfs_find(nullptr);
    state_->vfs = *state_->below;
    state_->vfs.zName = "faulty";
    state_->vfs.szOsFile += static_cast<int>(sizeof(File));
    state_->vfs.pAppData = state_.get();
    state_->vfs.xOpen = openFile;
    state_->vfs.xDelete = deleteFile;
    state_->vfs.xAccess = accessFile;
    if (sqlite3_vfs_register(&state_->vfs, 1) != SQLITE_OK) throw std::runtime_error("sqlite3_vfs_register");
}

FaultySqliteFiles::~FaultySqliteFiles() {
    sqlite3_vfs_unregister(&state_->vfs);
    sqlite3_vfs_register(state_->below, 1);
}

void FaultySqliteFiles::failAt(int operation, SqliteFault fault, bool isLasting) {
    state_->fault = fault;
    state_->isLasting = isLasting;
    state_->hasFailed = false;
    state_->left = operation;
}

void FaultySqliteFiles::heal() {
    state_->left = 0;
    state_->isLasting = false;
}

bool FaultySqliteFiles::hasFailed() const {
    return state_->hasFailed;
}

} // namespace corvane::testing
