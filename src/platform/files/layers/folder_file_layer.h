// A file layer of which all paths are relative to one open folder: what works on paths then works within that
// folder, wherever it lies by now. Links at the end of a path aren't followed by stat(). Thread-safe as far
// as the layer below is.
#pragma once

#include <string>

#include "platform/files/layers/forwarding_file_layer.h"

namespace corvane::platform {

class FolderFileLayer final : public ForwardingFileLayer {
  public:
    // `files` and the descriptor must outlive this layer.
    FolderFileLayer(FileLayer& files, int folder)
      : ForwardingFileLayer(files)
      , folder_(folder) {}

    int open(const std::string& path, int flags, mode_t mode) override {
        return openAt(folder_, path, flags, mode);
    }

    int stat(const std::string& path, struct stat& result) override { return statAt(folder_, path, result); }

    int makeDirectory(const std::string& path, mode_t mode) override {
        return makeDirectoryAt(folder_, path, mode);
    }

    int rename(const std::string& from, const std::string& to) override {
        return renameAt(folder_, from, to);
    }

    int unlink(const std::string& path) override { return unlinkAt(folder_, path); }

  private:
    int folder_;
};

} // namespace corvane::platform
