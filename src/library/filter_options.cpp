#include "library/filter_options.h"

#include <algorithm>
#include <tuple>
#include <unordered_map>

#include "platform/paths.h"

namespace corvane {

namespace {

LibraryLocationFilterOption optionOf(std::string_view root, std::int64_t count,
                                     const std::vector<ArchiveLocation>& locations) {
    const auto known = std::ranges::find(locations, root, &ArchiveLocation::rootPath);
    if (known == locations.end()) {
        return {.rootPath = std::string(root),
                .title = std::string(platform::lastPathComponent(root)),
                .count = count,
                .systemImage = "folder",
                .isConnected = true};
    }
    return {.rootPath = known->rootPath,
            .title = known->displayName,
            .count = count,
            .systemImage = known->symbol(),
            .isConnected = known->isConnected};
}

} // namespace

std::vector<LibraryAccountFilterOption> accountOptions(std::span<const EntryPosition> entries,
                                                       const std::vector<std::uint32_t>& accountOf,
                                                       const std::vector<ArchiveAccountScope>& accounts) {
    std::vector<std::int64_t> counts(accounts.size());
    for (const EntryPosition position : entries) ++counts[accountOf[position]];
    std::vector<LibraryAccountFilterOption> options;
    for (std::size_t account = 0; account < accounts.size(); ++account) {
        if (counts[account] > 0)
            options.push_back({accounts[account].key, accounts[account].title, counts[account]});
    }
    std::ranges::sort(options, {}, [](const LibraryAccountFilterOption& option) {
        return std::tuple(-option.count, std::string_view(option.title), std::string_view(option.key));
    });
    return options;
}

std::vector<LibraryLocationFilterOption> locationOptions(std::span<const EntryPosition> positions,
                                                         const std::vector<ArchivedEntry>& entries,
                                                         const std::vector<ArchiveLocation>& locations) {
    std::unordered_map<std::string_view, std::int64_t> counts;
    for (const EntryPosition position : positions) ++counts[entries[position].locationRootPath];
    std::vector<LibraryLocationFilterOption> options;
    options.reserve(counts.size());
    for (const auto& [root, count] : counts) options.push_back(optionOf(root, count, locations));
    std::ranges::sort(options, {}, [](const LibraryLocationFilterOption& option) {
        return std::tuple(!option.isConnected, -option.count, std::string_view(option.title),
                          std::string_view(option.rootPath));
    });
    return options;
}

} // namespace corvane
