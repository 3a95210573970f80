// What the files and folders of an archive permit: no more to anybody than the folder that holds the archive,
// and as much, as far as the process's mask lets them. So an archive that a run makes is its user's alone,
// and one in a folder that is shared on purpose stays shared. A layer over the one that makes them;
// thread-safe as that one.
#pragma once

#include <string>

#include "platform/files/layers/forwarding_file_layer.h"

namespace corvane::archive {

// What is asked for before the folder narrows it.
inline constexpr mode_t mostOfFile = 0666;
inline constexpr mode_t mostOfFolder = 0777;

class ArchiveModes final : public platform::ForwardingFileLayer {
  public:
    // `root` is the mode of the archive's folder. `files` must outlive this layer.
    ArchiveModes(platform::FileLayer& files, mode_t root)
      : ForwardingFileLayer(files)
      , root_((root & mostOfFolder) | S_IRWXU) {}

    int open(const std::string& path, int flags, mode_t mode) override {
        return ForwardingFileLayer::open(path, flags, mode & root_);
    }

    int openAt(int folder, const std::string& name, int flags, mode_t mode) override {
        return ForwardingFileLayer::openAt(folder, name, flags, mode & root_);
    }

    int makeDirectory(const std::string& path, mode_t mode) override {
        return ForwardingFileLayer::makeDirectory(path, mode & root_);
    }

    int makeDirectoryAt(int folder, const std::string& name, mode_t mode) override {
        return ForwardingFileLayer::makeDirectoryAt(folder, name, mode & root_);
    }

  private:
    mode_t root_;
};

} // namespace corvane::archive
