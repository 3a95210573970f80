#include "screens/library/detail/archived_file_state.h"

#include "locations/loading/archived_files.h"

namespace corvane::archived_file {

State stateOf(const LibraryLoader& library, const ArchivedEntry& entry) {
    const ArchiveLocation* location = library.location(entry.locationRootPath);
    if (location != nullptr && !location->isConnected) return State::Unplugged;
    switch (library.archivedFiles()->presence(entry.locationRootPath, entry.record.emlRelativePath)) {
    case ArchivedFilePresence::there:
        return State::Here;
    case ArchivedFilePresence::inCloud:
        return State::InCloud;
    case ArchivedFilePresence::gone:
        return State::Gone;
    case ArchivedFilePresence::unknown:
        break;
    }
    return State::Unknown;
}

} // namespace corvane::archived_file
