#include "mailstore/quiet_database.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include <fmt/format.h>

#include "platform/directory.h"
#include "text/encoding.h"

namespace corvane::mailstore {

QuietDatabase::QuietDatabase(std::string path)
  : path_(std::move(path))
  , name_(path_) {
    if (isInWalMode()) before_ = settledState();
    if (before_) name_ = fmt::format("file:{}?immutable=1", text::percentEncodedPath(path_));
}

bool QuietDatabase::wasDisturbed() const {
    return before_ && settledState() != before_;
}

std::optional<QuietDatabase::State> QuietDatabase::settledState() const {
    std::error_code error;
    if (platform::fileExists(path_ + "-wal")) return std::nullopt;
    const auto size = platform::fileSize(path_);
    const auto modified = std::filesystem::last_write_time(path_, error);
    if (!size || error) return std::nullopt;
    return State{.size = *size, .modified = modified.time_since_epoch().count()};
}

// The format numbers of the file header (https://sqlite.org/fileformat.html, offsets 18 and 19).
bool QuietDatabase::isInWalMode() const {
    const auto header = platform::readFilePrefix(path_, 20);
    return header && header->size() == 20 && (*header)[18] == 2 && (*header)[19] == 2;
}

} // namespace corvane::mailstore
