#include "model/library/library_file_looks.h"

namespace corvane {

ArchivedFileLooks::Look LibraryFileLooks::at(std::string_view root, std::string_view relativePath) const {
    using Place = ProofFile::Place;
    if (const FileStamp* const stamp = files_->stamp(root, relativePath)) return {Place::there, *stamp};
    const bool isGone = files_->presence(root, relativePath) == ArchivedFilePresence::gone;
    return {isGone ? Place::gone : Place::outOfReach, {}};
}

} // namespace corvane
