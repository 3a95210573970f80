// Where paths below an archive's root really lie, links resolved. Only looks, and may block, but for the
// constructor. Used by one thread at a time.
#pragma once

#include <string>
#include <string_view>
#include <utility>

namespace corvane::archive {

class ArchiveRoot {
  public:
    explicit ArchiveRoot(std::string path)
      : path_(std::move(path)) {}

    // The path below the root, links and ".." left as they are.
    [[nodiscard]] std::string at(std::string_view relativePath) const;

    // Whether this folder exists and lies below the root after its links are resolved: a link planted in an
    // archive must not lead a write, or a look, out of it.
    [[nodiscard]] bool holdsFolder(const std::string& folder);

  private:
    std::string path_;
    std::string resolved_; // with '/' at the end; empty until needed
};

} // namespace corvane::archive
