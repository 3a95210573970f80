// What a removal is about and what came of it, as its question shows them. Pure, any thread; linear in the
// mail, so made in the background.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <QString>
#include <QVariantList>

#include "library/library_list.h"
#include "model/library/archive_removal_flow.h"
#include "model/library/presence/original_presence.h"

namespace corvane {

struct RemovalList {
    // First those that are known not to be in Mail any more, then those that nobody has looked for.
    SharedEntryList entries = std::make_shared<const std::vector<ArchivedEntry>>();
    std::size_t missing = 0;
    std::size_t unknown = 0;
    std::int64_t bytes = 0;
    std::vector<std::string> roots; // one each

    [[nodiscard]] ArchivedOriginalPresenceStatus statusAt(std::size_t position) const;
};

// Positions in the index of the list.
RemovalList removalList(const LibraryList& list, const std::vector<EntryPosition>& positions,
                        const OriginalPresence& presence);

struct RemovalReport {
    std::int64_t failedBytes = 0;
    std::int64_t recordsGone = 0; // of those that failed
    QVariantList failures;        // maps with `subject`, `sizeText` and `reason`; of a long list the first
    QString lines;                // of all failures
    std::string root;             // of the first failure
};

RemovalReport removalReport(const RemovalList& list, const std::vector<ArchiveRemovalEnd::Failure>& failures);

// Of a long list no more are shown: each costs about a millisecond when the sheet opens.
inline constexpr std::size_t mostRemovalsShown = 16;

} // namespace corvane
