#include "model/library/library_file_looks.h"

#include "platform/files/file_look.h"
#include "platform/paths.h"

namespace corvane {

ArchivedFileLooks::Look LibraryFileLooks::at(std::string_view root, std::string_view relativePath) const {
    using Presence = platform::FileLook::Presence;
    using Place = ProofFile::Place;
    if (!connectedRoots_.contains(root)) return {};
    if (!platform::isSafeRelativePath(relativePath)) return {Place::gone, {}};
    const platform::FileLook look = platform::lookAtFile(platform::joinPath(root, relativePath));
    if (look.presence == Presence::absent) return {Place::gone, {}};
    if (look.presence == Presence::unknown) return {};
    return {.place = Place::there, .stamp = {look.sizeBytes, look.modifiedNanoseconds}};
}

} // namespace corvane
