#include "archive/attachments/attachment_cache.h"

#include <cerrno>
#include <filesystem>
#include <iterator>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/files/directory.h"
#include "platform/files/sha256.h"
#include "platform/files/writing/durable_file.h"
#include "platform/files/writing/file_claim.h"
#include "platform/files/writing/private_files.h"
#include "platform/files/writing/temporary_file.h"
#include "platform/paths.h"
#include "records/archived/content_hash.h"

namespace corvane::archive {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view folderName = "CorvaneAttachments";
// Each run holds a claim on a file of its own name as long as it lives.
constexpr std::string_view claimExtension = ".run";
constexpr std::size_t runDigits = 16;
constexpr std::size_t mailDigits = 16;

[[noreturn]] void fail(int error, const std::string& path) {
    throw std::system_error(error, std::generic_category(), path);
}

// In a temporary folder of the whole machine the plain name may be somebody else's.
std::string baseFolder(const std::string& temporaryFolder) {
    std::string plain = platform::joinPath(temporaryFolder, folderName);
    struct stat status{};
    const bool isOthers = ::lstat(plain.c_str(), &status) == 0 && status.st_uid != ::geteuid();
    return isOthers ? fmt::format("{}-{}", plain, ::geteuid()) : plain;
}

std::string digitsOf(std::string_view text, std::size_t count) {
    return hexDigits(platform::sha256(text)).substr(0, count);
}

bool isUnclaimed(const std::string& path) {
    const platform::FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK));
    return file && platform::claimFile(file.get()) == platform::FileClaim::held;
}

void removeRun(const std::string& base, const std::vector<platform::DirectoryEntry>& entries,
               std::string_view run) {
    std::error_code ignored;
    for (const auto& entry : entries) {
        if (entry.name.starts_with(run)) fs::remove_all(platform::joinPath(base, entry.name), ignored);
    }
}

} // namespace

AttachmentCache::AttachmentCache(const std::string& temporaryFolder, const Limits& limits)
  : base_(baseFolder(temporaryFolder))
  , run_(digitsOf(platform::randomUuid(), runDigits))
  , limits_(limits) {}

std::string AttachmentCache::cacheFolder(std::string_view mailPath) const {
    return platform::joinPath(base_, run_ + digitsOf(fmt::format("{}\n{}", run_, mailPath), mailDigits));
}

std::optional<std::string> AttachmentCache::find(const Key& key) {
    const text::MutexLock lock(mutex_);
    const auto found = byKey_.find(key);
    if (found == byKey_.end()) return std::nullopt;
    const auto file = found->second;
    if (platform::fileSize(file->path).value_or(0) < 1) return std::nullopt;
    files_.splice(files_.begin(), files_, file);
    return file->path;
}

std::string AttachmentCache::put(const Key& key, std::string_view data) {
    const text::MutexLock lock(mutex_);
    begin();
    std::string path;
    if (const auto known = byKey_.find(key); known != byKey_.end()) {
        path = known->second->path;
        remove(known->second);
    }
    makeRoomFor(std::ssize(data));
    const std::string folder = cacheFolder(key.mailPath);
    if (!platform::makeOwnFolder(folder)) fail(errno, folder);
    if (path.empty()) path = platform::joinPath(folder, names_.next(folder, portableFileName(key.name)));
    if (const auto error = platform::writeFileAtomically(platform::posixFileLayer(), path, data))
        throw std::system_error(error, path);
    files_.push_front({key, path, std::ssize(data)});
    byKey_[key] = files_.begin();
    bytes_ += std::ssize(data);
    return path;
}

void AttachmentCache::begin() {
    if (!platform::makeOwnFolder(base_)) fail(EACCES, base_);
    if (claim_) return;
    const std::string path = platform::joinPath(base_, run_ + std::string(claimExtension));
    claim_ = platform::FileDescriptor(
        ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, platform::privateFileMode));
    if (!claim_) fail(errno, path);
    platform::claimFile(claim_.get());
}

void AttachmentCache::remove(Files::iterator file) {
    std::error_code ignored;
    fs::remove(file->path, ignored);
    // Fails while others of the mail are there.
    fs::remove(platform::parentPath(file->path), ignored);
    bytes_ -= file->bytes;
    byKey_.erase(file->key);
    files_.erase(file);
}

void AttachmentCache::makeRoomFor(std::int64_t bytes) {
    while (!files_.empty() && (bytes_ + bytes > limits_.bytes || files_.size() >= limits_.files))
        remove(std::prev(files_.end()));
}

void AttachmentCache::removeLeftovers(const std::string& temporaryFolder) {
    const std::string base = baseFolder(temporaryFolder);
    if (!platform::isDirectory(base) || !platform::makeOwnFolder(base)) return;
    const auto entries = platform::listDirectory(base, platform::HiddenEntries::include);
    if (!entries) return;
    for (const auto& entry : *entries) {
        if (entry.name.size() == runDigits + claimExtension.size() && entry.name.ends_with(claimExtension) &&
            isUnclaimed(platform::joinPath(base, entry.name)))
            removeRun(base, *entries, std::string_view(entry.name).substr(0, runDigits));
    }
}

} // namespace corvane::archive
