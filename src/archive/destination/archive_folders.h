// The folders of one archive, reached from the descriptor of its root and never by a path from above:
// whatever is renamed, linked or mounted meanwhile, a run stays in the folder that it opened. Blocks, without
// a time limit of its own. Used by one thread at a time.
#pragma once

#include <compare>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "platform/files/file_identity.h"
#include "platform/files/layers/file_layer.h"
#include "platform/files/layers/layer_descriptor.h"

namespace corvane::archive {

// A folder that a file was written into: it counts only as long as its path leads there.
struct WrittenFolder {
    std::string relativePath;
    platform::FileIdentity identity;

    friend auto operator<=>(const WrittenFolder&, const WrittenFolder&) = default;
};

class ArchiveFolders {
  public:
    // What was learned of a folder that files are written into.
    struct Known {
        platform::FileIdentity identity;
        // False when the disk knows the folder, or one above, by another spelling, as one without case does.
        bool isSpelledSo = true;
        std::optional<std::unordered_set<std::string>> fileNames; // composed; read when first needed
    };

    struct Opened {
        platform::LayerDescriptor descriptor; // none, and errno, when the folder can't be used
        Known* known = nullptr;
    };

    // `rootPath` is what the descriptor was opened by.
    ArchiveFolders(std::string rootPath, std::shared_ptr<const platform::LayerDescriptor> root);

    // 0 while the root's path leads to the root that was opened; ENOENT when it leads elsewhere or nowhere;
    // another errno when nobody could look.
    [[nodiscard]] int rootError(platform::FileLayer& files) const;

    [[nodiscard]] int root() const noexcept { return root_->get(); }

    enum class Links {
        ofNeighbours, // a link counts when it leads to a neighbour in its own folder
        none,         // ELOOP or ENOTDIR
    };

    // A folder below the root, as it is; no descriptor and errno when it isn't there or is none of this
    // archive.
    [[nodiscard]] platform::LayerDescriptor open(platform::FileLayer& files, std::string_view relativeFolder,
                                                 Links links = Links::ofNeighbours) const;

    // The same, but makes what is missing.
    Opened make(platform::FileLayer& files, const std::string& relativeFolder);

  private:
    std::string rootPath_;
    std::shared_ptr<const platform::LayerDescriptor> root_;
    std::unordered_map<std::string, Known> known_; // by relative path
};

// The names of which a relative path consists, with "." and ".." resolved as text.
std::vector<std::string> componentsOf(std::string_view path);

// The names in an open folder, composed; absent, with errno, when it can't be listed.
std::optional<std::unordered_set<std::string>> composedNamesIn(platform::FileLayer& files, int folder);

} // namespace corvane::archive
