#include "platform/files/temporary_file.h"

#include <array>
#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <sys/random.h>
#include <unistd.h>

#include "platform/paths.h"

namespace corvane::platform {

namespace {

void removeIfNamed(const std::string& path) noexcept {
    if (!path.empty()) ::unlink(path.c_str());
}

} // namespace

TemporaryFile::TemporaryFile(const std::string& folder, std::string_view prefix, std::string_view extension) {
    std::string path = joinPath(folder, prefix);
    path.append(randomUuid()).append(extension);
    descriptor_.reset(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!descriptor_) throw std::system_error(errno, std::generic_category(), path);
    path_ = std::move(path);
}

TemporaryFile::TemporaryFile(TemporaryFile&& other) noexcept
  : path_(std::exchange(other.path_, {}))
  , descriptor_(std::move(other.descriptor_)) {}

TemporaryFile& TemporaryFile::operator=(TemporaryFile&& other) noexcept {
    if (this == &other) return *this;
    removeIfNamed(path_);
    path_ = std::exchange(other.path_, {});
    descriptor_ = std::move(other.descriptor_);
    return *this;
}

TemporaryFile::~TemporaryFile() {
    removeIfNamed(path_);
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
