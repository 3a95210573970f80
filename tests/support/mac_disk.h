// A disk as a Mac has them, played over the one below: within an open folder a name is found in any case and
// Unicode form, and what is made is listed with the accents apart from their letters. Thread-safe.
#pragma once

#include <string>

#include "platform/files/layers/forwarding_file_layer.h"

namespace corvane::testing {

class MacDisk final : public platform::ForwardingFileLayer {
  public:
    MacDisk()
      : ForwardingFileLayer(platform::posixFileLayer()) {}

    int openAt(int folder, const std::string& name, int flags, mode_t mode) override {
        return ForwardingFileLayer::openAt(folder, entryOf(folder, name), flags, mode);
    }

    int statAt(int folder, const std::string& name, struct stat& result) override {
        return ForwardingFileLayer::statAt(folder, entryOf(folder, name), result);
    }

    int makeDirectoryAt(int folder, const std::string& name, mode_t mode) override {
        return ForwardingFileLayer::makeDirectoryAt(folder, entryOf(folder, name), mode);
    }

    int renameAt(int folder, const std::string& from, const std::string& to) override {
        return ForwardingFileLayer::renameAt(folder, entryOf(folder, from), entryOf(folder, to));
    }

    int unlinkAt(int folder, const std::string& name) override {
        return ForwardingFileLayer::unlinkAt(folder, entryOf(folder, name));
    }

  private:
    std::string entryOf(int folder, const std::string& name);
};

} // namespace corvane::testing
