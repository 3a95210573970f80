// Which originals of archived mail were in Mail when it was last asked. Immutable once published, shared
// between threads; the functions are pure and linear in the entries.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "records/archived/archive_records.h"
#include "records/stores/presence_cache_store.h"
#include "records/values.h"

namespace corvane {

struct OriginalPresence {
    enum class State {
        unchecked,
        checked,     // there are statuses
        unavailable, // Mail was asked and couldn't answer, and nothing is known from an earlier time
    };

    SharedEntryList entries = std::make_shared<const std::vector<ArchivedEntry>>(); // never null
    std::string signature{}; // of the entries; empty as long as nobody has asked for their presence
    // By position in the entries; empty unless the state is `checked`.
    std::vector<ArchivedOriginalPresenceStatus> statuses{};
    // When the statuses were found; absent without any.
    std::optional<Date> checkedAt{};
    bool isOfEarlierRun = false; // what the cache holds: a person may have deleted originals since
    // Why Mail couldn't be asked, for the user; absent unless the state is `unavailable`.
    std::optional<std::string> failureMessage{};

    [[nodiscard]] State state() const;

    // `unknown` while nothing is known.
    [[nodiscard]] ArchivedOriginalPresenceStatus statusAt(std::size_t position) const {
        return position < statuses.size() ? statuses[position] : ArchivedOriginalPresenceStatus::unknown;
    }

    // Of an element of `entries`; `unknown` for one of another list.
    [[nodiscard]] ArchivedOriginalPresenceStatus statusOf(const ArchivedEntry& entry) const;
};

using SharedPresence = std::shared_ptr<const OriginalPresence>;

// The state's name in documents for other programs.
std::string_view rawValue(OriginalPresence::State state);

// A text that is the same for the same entry ids and Message-IDs, whatever their order.
std::string archivedOriginalPresenceSignature(const std::vector<ArchivedEntry>& entries);

// What is known of these entries by what was known of earlier ones: the same where the signature is, else
// `unchecked`.
SharedPresence presenceOfEntries(SharedEntryList entries, const SharedPresence& earlier);

// What the cache tells of the entries of `presence`; null where it has nothing for their signature.
SharedPresence restoredPresence(const OriginalPresence& presence,
                                const ArchivedOriginalPresenceCacheStore& store);

} // namespace corvane
