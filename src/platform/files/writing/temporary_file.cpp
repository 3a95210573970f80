#include "platform/files/writing/temporary_file.h"

#include <array>
#include <cerrno>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/files/writing/file_claim.h"
#include "platform/paths.h"

namespace corvane::platform {

namespace {

std::string freshPath(const std::string& folder, std::string_view prefix, std::string_view extension) {
    return joinPath(folder, prefix).append(randomUuid()).append(extension);
}

[[noreturn]] void throwLastError(const std::string& path) {
    throw std::system_error(errno, std::generic_category(), path);
}

void removeIfNamed(const std::string& path) noexcept {
    if (!path.empty()) ::unlink(path.c_str());
}

} // namespace

TemporaryFile::TemporaryFile(const std::string& folder, std::string_view prefix, std::string_view extension) {
    for (int tries = 0; tries < claimTries; ++tries) {
        path_ = freshPath(folder, prefix, extension);
        descriptor_.reset(::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
        if (!descriptor_) throwLastError(path_);
        if (claimFile(descriptor_.get()) != FileClaim::refused) break;
    }
    claim_.reset(::fcntl(descriptor_.get(), F_DUPFD_CLOEXEC, 0));
}

TemporaryFile::TemporaryFile(TemporaryFile&& other) noexcept
  : path_(std::exchange(other.path_, {}))
  , descriptor_(std::move(other.descriptor_))
  , claim_(std::move(other.claim_)) {}

TemporaryFile& TemporaryFile::operator=(TemporaryFile&& other) noexcept {
    if (this == &other) return *this;
    removeIfNamed(path_);
    path_ = std::exchange(other.path_, {});
    descriptor_ = std::move(other.descriptor_);
    claim_ = std::move(other.claim_);
    return *this;
}

TemporaryFile::~TemporaryFile() {
    removeIfNamed(path_);
}

TemporaryFolder::TemporaryFolder(const std::string& folder, std::string_view prefix) {
    for (int tries = 0; tries < claimTries; ++tries) {
        path_ = freshPath(folder, prefix, "");
        if (::mkdir(path_.c_str(), 0700) != 0) throwLastError(path_);
        claim_.reset(::open(path_.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        if (!claim_ || claimFile(claim_.get()) != FileClaim::refused) break;
    }
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string randomUuid() {
    std::array<unsigned char, 16> bytes{};
    if (::getentropy(bytes.data(), bytes.size()) != 0)
        throw std::system_error(errno, std::generic_category());
    bytes[6] = static_cast<unsigned char>((bytes[6] & 0x0F) | 0x40);
    bytes[8] = static_cast<unsigned char>((bytes[8] & 0x3F) | 0x80);
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
        text += "0123456789ABCDEF"[bytes[i] >> 4];
        text += "0123456789ABCDEF"[bytes[i] & 0x0F];
    }
    return text;
}

} // namespace corvane::platform
