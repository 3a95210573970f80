// Removing one archived file by what an index says of it. An index is from outside, so only a regular .eml
// file inside the archive goes, reached through no link; everything else is left and told. Blocks. Used by
// one thread at a time.
#pragma once

#include <string>
#include <vector>

#include "archive/destination/archive_folders.h"
#include "platform/files/layers/file_layer.h"

namespace corvane::archive {

struct FileRemoval {
    enum class Outcome {
        notTried,
        removed,
        gone,      // it wasn't there any more
        shared,    // another record names it, so it stays
        otherKind, // what the path names is no archived mail
        failed,
    };

    Outcome outcome = Outcome::notTried;
    int error = 0;          // of a failure, as errno
    bool isInCloud = false; // a failure: only a cloud provider's placeholder is here

    // The record has no file any more that is its alone.
    [[nodiscard]] bool isSettled() const {
        return outcome != Outcome::notTried && outcome != Outcome::failed;
    }
};

// `others` are the paths of records that stay and could name the same file.
FileRemoval removeArchivedFile(platform::FileLayer& files, const ArchiveFolders& folders,
                               const std::string& relativePath, const std::vector<std::string>& others);

// What the names of two paths have in common that could be one file, also on a disk without case.
std::string comparableName(const std::string& relativePath);

} // namespace corvane::archive
