// A file that is written for a person: it takes its name, which nothing has yet, when it is whole and was
// read back; until then its bytes lie beside it. What is given up leaves nothing, and what a killed process
// leaves beside it goes with platform::removeUnfinishedFiles(). One thread; blocks.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/files/layers/file_layer.h"
#include "platform/files/layers/layer_descriptor.h"
#include "platform/files/sha256.h"

namespace corvane::archive {

class NewFile {
  public:
    // Throws std::system_error, EEXIST where anything has the name.
    // `files` must outlive it.
    NewFile(platform::FileLayer& files, std::string path);
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    // Gives up what wasn't finished.
    ~NewFile();

    // Throws std::system_error.
    void write(std::string_view bytes);

    // Forces the bytes to the storage and reads them back from there. Throws std::system_error, also where
    // what is read isn't what was written.
    void flush();

    // Gives the flushed bytes their name. Throws std::system_error, EEXIST where something has it by now.
    void finish();

    // After finish(): the folder too, as a single file needs it.
    void syncFolder();

    // Where the bytes lie until finish().
    [[nodiscard]] const std::string& unfinishedPath() const { return unfinished_; }

  private:
    void make();
    void writeBuffer();
    void sync();

    platform::FileLayer& files_;
    std::string path_;
    std::string unfinished_;
    platform::LayerDescriptor file_;
    platform::Sha256 hash_;
    std::string buffer_;
    std::size_t unsyncedBytes_ = 0;
    bool isFinished_ = false;
};

} // namespace corvane::archive
