// What a live load of the library saw of archived files, as proofs ask for it. Immutable, shared between
// threads.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "listing/proof/proof_sources.h"

namespace corvane {

class LibraryFileLooks final : public ArchivedFileLooks {
  public:
    explicit LibraryFileLooks(std::set<std::string, std::less<>> connectedRoots)
      : connectedRoots_(std::move(connectedRoots)) {}

    [[nodiscard]] Look at(std::string_view root, std::string_view relativePath) const override;

  private:
    std::set<std::string, std::less<>> connectedRoots_;
};

} // namespace corvane
