// What the menus of the library's filters offer. Pure functions, linear in the entries, any thread.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "library/accounts/account_scopes.h"
#include "library/threads/thread_keys.h"
#include "records/archived/archive_records.h"

namespace corvane {

struct LibraryAccountFilterOption {
    std::string key;
    std::string title;
    std::int64_t count = 0;

    friend bool operator==(const LibraryAccountFilterOption&, const LibraryAccountFilterOption&) = default;
};

struct LibraryLocationFilterOption {
    std::string rootPath;
    std::string title;
    std::int64_t count = 0;
    std::string systemImage; // "icloud", "externaldrive" or "folder"
    bool isConnected = false;

    friend bool operator==(const LibraryLocationFilterOption&, const LibraryLocationFilterOption&) = default;
};

// `accountOf` has the number of each entry's account, by position. Only accounts that have one of the
// entries; most of them first, then by title.
std::vector<LibraryAccountFilterOption> accountOptions(std::span<const EntryPosition> entries,
                                                       const std::vector<std::uint32_t>& accountOf,
                                                       const std::vector<ArchiveAccountScope>& accounts);

// Only roots that have one of the entries; connected ones first, then most entries, then by title. A root
// that is no known location counts as connected.
std::vector<LibraryLocationFilterOption> locationOptions(std::span<const EntryPosition> positions,
                                                         const std::vector<ArchivedEntry>& entries,
                                                         const std::vector<ArchiveLocation>& locations);

} // namespace corvane
