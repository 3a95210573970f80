// What a live load of the library saw of archived files, as proofs ask for it. Immutable, shared between
// threads.
#pragma once

#include <string_view>
#include <utility>

#include "listing/proof/proof_sources.h"
#include "locations/loading/archived_files.h"

namespace corvane {

class LibraryFileLooks final : public ArchivedFileLooks {
  public:
    // `files` isn't null.
    explicit LibraryFileLooks(SharedArchivedFiles files)
      : files_(std::move(files)) {}

    [[nodiscard]] const SharedArchivedFiles& files() const { return files_; }

    [[nodiscard]] Look at(std::string_view root, std::string_view relativePath) const override;

  private:
    SharedArchivedFiles files_;
};

} // namespace corvane
