// In what state the places are at which archives lie, lay, or are to lie: what is to be done about each. No
// state is told of a place that couldn't be looked at but that.
#pragma once

#include <cstdint>
#include <set>
#include <stop_token>
#include <string>
#include <vector>

#include "platform/platform.h"
#include "records/stores/app_support.h"

namespace corvane {

struct ArchivePlaceState {
    enum class Kind {
        connected,    // an archive that can be read
        unused,       // a folder without an archive and without mail
        withoutIndex, // its mail is there
        damagedIndex,
        unplugged, // its disk isn't there, or nobody knows whether it is
        gone,      // the folder has gone from a disk that is there
        unanswered,
    };

    Kind kind = Kind::unanswered;
    std::int64_t mails = 0; // without an index that can be read: files

    friend bool operator==(const ArchivePlaceState&, const ArchivePlaceState&) = default;
};

// Of each root, in their order. `listed` are those that the library has read. Blocks, with
// `platform::placeLimit` a step for a place that doesn't answer; after a stop the rest are `unanswered`.
std::vector<ArchivePlaceState> lookAtArchivePlaces(const platform::Platform& platform,
                                                   const CorvaneAppSupport& support,
                                                   const std::vector<std::string>& roots,
                                                   const std::set<std::string>& listed,
                                                   const std::stop_token& stop);

} // namespace corvane
