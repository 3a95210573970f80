#include "model/library/library_file_looks.h"

namespace corvane {

ArchivedFileLooks::Look LibraryFileLooks::at(std::string_view root, std::string_view relativePath) const {
    using Place = ProofFile::Place;
    if (const FileStamp* const stamp = files_->stamp(root, relativePath)) return {Place::there, *stamp};
    const ArchivedFilePresence presence = files_->presence(root, relativePath);
    if (presence == ArchivedFilePresence::gone) return {Place::gone, {}};
    const bool isUnseen = presence == ArchivedFilePresence::unknown && files_->byRoot.contains(root);
    return {isUnseen ? Place::unseen : Place::outOfReach, {}};
}

} // namespace corvane
