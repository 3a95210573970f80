#include "platform/files/writing/leftovers.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/files/directory.h"
#include "platform/files/file_descriptor.h"
#include "platform/files/writing/file_claim.h"
#include "platform/paths.h"

namespace corvane::platform {

namespace {

constexpr std::string_view unfinishedPrefix = ".corvane-";
constexpr std::string_view unfinishedExtension = ".tmp";
constexpr std::string_view temporaryPrefix = "corvane-";
constexpr std::size_t uuidLength = 36;
constexpr std::chrono::hours certainAge{24};

// As randomUuid() writes it.
bool isUuid(std::string_view text) noexcept {
    constexpr std::string_view digits = "0123456789ABCDEF";
    if (text.size() != uuidLength) return false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isBorder = i == 8 || i == 13 || i == 18 || i == 23;
        if (isBorder ? text[i] != '-' : digits.find(text[i]) == std::string_view::npos) return false;
    }
    return text[14] == '4';
}

bool isExtension(std::string_view text) noexcept {
    return text.empty() || (text.size() <= 6 && text.front() == '.' &&
                            std::ranges::all_of(text.substr(1), [](char c) { return c >= 'a' && c <= 'z'; }));
}

bool hasNotChangedForLong(const struct stat& status) noexcept {
    const auto changed = std::chrono::system_clock::from_time_t(status.st_mtime);
    return std::chrono::system_clock::now() - changed > certainAge;
}

bool remove(const std::string& path, bool isFolder) {
    if (!isFolder) return ::unlink(path.c_str()) == 0;
    std::error_code error;
    std::filesystem::remove_all(path, error);
    return !error;
}

// Looked at before it is opened: a device or a FIFO of that name must not be touched.
bool isOurs(const struct stat& status) noexcept {
    return (S_ISREG(status.st_mode) || S_ISDIR(status.st_mode)) && status.st_uid == ::geteuid();
}

// While the claim is held nobody can begin to use the entry.
bool removeIfLeft(const std::string& path) {
    struct stat status{};
    if (::lstat(path.c_str(), &status) != 0 || !isOurs(status)) return false;
    const bool isFolder = S_ISDIR(status.st_mode);
    const FileDescriptor entry(
        ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | (isFolder ? O_DIRECTORY : 0)));
    const FileClaim claim = entry ? claimFile(entry.get()) : FileClaim::unsupported;
    if (claim == FileClaim::refused) return false;
    return (claim == FileClaim::held || hasNotChangedForLong(status)) && remove(path, isFolder);
}

template <typename IsName>
int removeLeftoversOf(const std::string& folder, const IsName& isName) {
    std::vector<std::string> names;
    visitDirectory(folder, [&](std::string_view name, unsigned char) {
        if (isName(name)) names.emplace_back(name);
    });
    return static_cast<int>(std::ranges::count_if(
        names, [&](const std::string& name) { return removeIfLeft(joinPath(folder, name)); }));
}

} // namespace

int removeUnfinishedFiles(const std::string& folder) {
    return removeLeftoversOf(folder, isNameOfUnfinishedFile);
}

int removeTemporaryFiles(const std::string& folder) {
    return removeLeftoversOf(folder, isNameOfTemporaryFile);
}

bool isNameOfUnfinishedFile(std::string_view name) noexcept {
    if (!name.starts_with(unfinishedPrefix) || !name.ends_with(unfinishedExtension)) return false;
    return name.size() == unfinishedPrefix.size() + uuidLength + unfinishedExtension.size() &&
           isUuid(name.substr(unfinishedPrefix.size(), uuidLength));
}

bool isNameOfTemporaryFile(std::string_view name) noexcept {
    if (!name.starts_with(temporaryPrefix)) return false;
    const std::size_t wordStart = temporaryPrefix.size();
    const std::size_t wordEnd = name.find_first_not_of("abcdefghijklmnopqrstuvwxyz", wordStart);
    if (wordEnd == std::string_view::npos || wordEnd == wordStart || name[wordEnd] != '-') return false;
    const std::string_view rest = name.substr(wordEnd + 1);
    return rest.size() >= uuidLength && isUuid(rest.substr(0, uuidLength)) &&
           isExtension(rest.substr(uuidLength));
}

} // namespace corvane::platform
