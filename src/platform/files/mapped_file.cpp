#include "platform/files/mapped_file.h"

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include "platform/files/file_descriptor.h"

namespace corvane::platform {

MappedFile::MappedFile(const std::string& path) {
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file) throw std::system_error(errno, std::generic_category(), path);
    struct stat info{};
    if (::fstat(file.get(), &info) != 0) throw std::system_error(errno, std::generic_category(), path);
    if (!S_ISREG(info.st_mode)) throw std::system_error(EINVAL, std::generic_category(), path);
    size_ = static_cast<std::size_t>(info.st_size);
    if (size_ == 0) return;
    address_ = ::mmap(nullptr, size_, PROT_READ, MAP_PRIVATE, file.get(), 0);
    if (address_ == MAP_FAILED) throw std::system_error(errno, std::generic_category(), path);
    ::madvise(address_, size_, MADV_SEQUENTIAL);
}

MappedFile::~MappedFile() {
    if (size_ > 0) ::munmap(address_, size_);
}

} // namespace corvane::platform
