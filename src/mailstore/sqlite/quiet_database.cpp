#include "mailstore/sqlite/quiet_database.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <system_error>
#include <tuple>
#include <utility>

#include <fmt/format.h>
#include <unistd.h>

#include "platform/files/directory.h"
#include "platform/files/writing/private_files.h"
#include "platform/files/writing/temporary_file.h"
#include "platform/paths.h"
#include "text/charsets/encoding.h"
#include "text/mutex.h"

namespace corvane::mailstore {

// A database and its log in a folder of their own, removed with their last user.
class DatabaseCopy {
  public:
    // Throws std::system_error or std::filesystem::filesystem_error when the files can't be copied.
    DatabaseCopy(const std::string& path, const std::string& temporaryFolder)
      : folder_(temporaryFolder, "corvane-index-") {
        for (const char* suffix : {"", "-wal"}) {
            std::filesystem::copy_file(path + suffix, this->path() + suffix);
            platform::narrowToOwner(this->path() + suffix);
        }
    }

    [[nodiscard]] std::string path() const { return platform::joinPath(folder_.path(), "index"); }

  private:
    platform::TemporaryFolder folder_;
};

namespace {

// One copy serves all questions to a database, as long as it and its log stay as they are. Null when there
// can be none.
std::shared_ptr<const DatabaseCopy> sharedCopy(const std::string& path, const std::string& temporaryFolder) {
    static text::Mutex mutex;
    static std::tuple<std::string, std::int64_t, std::filesystem::file_time_type> key GUARDED_BY(mutex);
    static std::shared_ptr<const DatabaseCopy> copy GUARDED_BY(mutex);
    std::error_code error;
    const auto modified = std::filesystem::last_write_time(path + "-wal", error);
    const std::tuple wanted(path, platform::fileSize(path + "-wal").value_or(0), modified);
    const text::MutexLock lock(mutex);
    if (copy && key == wanted) return copy;
    try {
        copy = std::make_shared<const DatabaseCopy>(path, temporaryFolder);
    } catch (const std::system_error&) {
        return nullptr;
    }
    key = wanted;
    return copy;
}

} // namespace

bool consistsOfFiles(const std::string& path) {
    return std::ranges::all_of(std::array{"", "-wal", "-shm", "-journal"}, [&](const char* ending) {
        const std::string file = path + ending;
        return platform::isRegularFile(file) || !platform::fileExists(file);
    });
}

QuietDatabase::QuietDatabase(std::string path, const std::string& temporaryFolder)
  : path_(std::move(path))
  , name_(path_) {
    if (!isInWalMode()) return;
    if (hasUnreachableLog()) {
        copy_ = sharedCopy(path_, temporaryFolder);
        // Without a copy the plain path tells the user why it can't be read.
        if (copy_) name_ = copy_->path();
        return;
    }
    before_ = settledState();
    if (before_) name_ = fmt::format("file:{}?immutable=1", text::percentEncodedPath(path_));
}

bool QuietDatabase::wasDisturbed() const {
    return before_ && settledState() != before_;
}

bool QuietDatabase::hasUnreachableLog() const {
    return platform::fileSize(path_ + "-wal").value_or(0) > 0 && !platform::fileExists(path_ + "-shm") &&
           ::access(std::string(platform::parentPath(path_)).c_str(), W_OK) != 0;
}

std::optional<QuietDatabase::State> QuietDatabase::settledState() const {
    std::error_code error;
    if (platform::fileExists(path_ + "-wal")) return std::nullopt;
    const auto size = platform::fileSize(path_);
    const auto modified = std::filesystem::last_write_time(path_, error);
    if (!size || error) return std::nullopt;
    return State{.size = *size, .modified = modified};
}

// The format numbers of the file header (https://sqlite.org/fileformat.html, offsets 18 and 19).
bool QuietDatabase::isInWalMode() const {
    const auto header = platform::readFilePrefix(path_, 20);
    return header && header->size() == 20 && (*header)[18] == 2 && (*header)[19] == 2;
}

} // namespace corvane::mailstore
