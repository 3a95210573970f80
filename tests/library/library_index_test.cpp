#include "library/library_index.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "library/entry_sketch.h"
#include "library/library_filters.h"
#include "library/library_selection.h"

namespace corvane::testing {
namespace {

using Ids = std::vector<std::string>;
using enum LibraryOrder;

SharedLibraryIndex indexOf(const std::vector<EntrySketch>& sketches) {
    return ArchiveLibraryIndex::make({.entries = makeEntries(sketches)});
}

Ids ids(const ArchiveLibraryIndex& index, std::span<const EntryPosition> positions) {
    Ids found;
    for (const EntryPosition position : positions) found.push_back(index.entry(position).record.id.str());
    return found;
}

// "latest: members" of each group.
Ids groups(const ArchiveLibraryIndex& index, const GroupsView& view) {
    Ids found;
    for (const LibrarySubjectGroup& group : view.groups) {
        std::string text = index.entry(group.latest).record.id.str() + ":";
        for (const std::string& id : ids(index, view.entries(group))) text += " " + id;
        found.push_back(text);
    }
    return found;
}

const std::vector<EntrySketch> sample = {
    {.id = "1", .subject = "Hello", .year = 2019},
    {.id = "2", .subject = "x", .year = {}, .account = "B@x", .mailbox = "Sent", .size = 5},
    {.id = "3", .subject = "fwd: hello", .year = 2021, .account = "b@x", .root = "/q/二"},
    {.id = "4", .subject = "", .year = 2021, .account = "A@X"},
    {.id = "5", .subject = "RE: x", .year = 2018, .mailbox = "Sent", .root = "/q/二"},
};

TEST(LibraryIndex, OrdersGroupsAndAccounts) {
    const auto index = indexOf(sample);
    EXPECT_EQ(ids(*index, index->sorted(newestFirst)), (Ids{"3", "4", "1", "5", "2"}));
    EXPECT_EQ(ids(*index, index->sorted(oldestFirst)), (Ids{"2", "5", "1", "4", "3"}));
    EXPECT_EQ(groups(*index, index->subjectGroups(newestFirst)), (Ids{"3: 3 1", "4: 4", "5: 5 2"}));
    EXPECT_EQ(groups(*index, index->subjectGroups(oldestFirst)), (Ids{"5: 2 5", "3: 1 3", "4: 4"}));
    EXPECT_EQ(groups(*index, index->subjectGroupsOfAccount(newestFirst, "mail-account:a@x")),
              (Ids{"4: 4", "1: 1", "5: 5"}));
    EXPECT_EQ(groups(*index, index->subjectGroupsOfAccount(oldestFirst, "mail-account:b@x")),
              (Ids{"2: 2", "3: 3"}));
    EXPECT_TRUE(index->subjectGroupsOfAccount(oldestFirst, "none").groups.empty());
    EXPECT_TRUE(index->sortedOfAccount(oldestFirst, "none").empty());
    EXPECT_EQ(index->threadKey(2), "thread:/r\x01"
                                   "1");
    EXPECT_EQ(index->threadKey(3), "single:/r\x01"
                                   "4");
    EXPECT_EQ(index->subjectKey(3), "∅/r\x01"
                                    "4");
    EXPECT_EQ(index->accountTitle("mail-account:a@x"), "a@x"); // of the last entry
    EXPECT_EQ(index->accountTitle("none"), std::nullopt);
    EXPECT_EQ(index->position("/q/二\x01"
                              "5"),
              4U);
    EXPECT_EQ(index->position("/r\x01"
                              "5"),
              std::nullopt);
    EXPECT_EQ(index->totalBytes(), 45);
    const auto odd = ArchiveLibraryIndex::make(
        {.entries = makeEntries(
             {{.id = "1", .size = -5}, {.id = "2", .size = INT64_MAX}, {.id = "3", .size = INT64_MAX}})});
    EXPECT_EQ(odd->totalBytes(), std::int64_t{2} << 40) << "an index may say anything";
    EXPECT_EQ(index->accountOptions(), (std::vector<LibraryAccountFilterOption>{
                                           {"mail-account:a@x", "a@x", 3}, {"mail-account:b@x", "b@x", 2}}));

    std::stop_source stopped;
    stopped.request_stop();
    EXPECT_EQ(ArchiveLibraryIndex::make(index->input(), stopped.get_token()), nullptr);
    EXPECT_TRUE(indexOf({})->subjectGroups(newestFirst).groups.empty());
}

TEST(LibraryIndex, LocationsAndSignatureTellWhatIsConnected) {
    LibraryIndexInput input{.entries = makeEntries(sample)};
    input.archiveLocations = {{"/z", "Z", ArchiveLocation::Kind::cloud, true, 0},
                              {"/r", "盘", ArchiveLocation::Kind::removable, false, 0}};
    input.archiveAccountMergeRules = {{"b", "1"}, {"a", "2"}};
    input.availableAccounts = {makeAccount("imap://B", "b"), makeAccount("imap://A", "a")};
    const auto index = ArchiveLibraryIndex::make(input);
    EXPECT_EQ(index->locationOptions(),
              (std::vector<LibraryLocationFilterOption>{{"/q/二", "二", 2, "folder", true},
                                                        {"/r", "盘", 3, "externaldrive", false}}));
    EXPECT_EQ(index->signature(), "derived-v4|5|/r\x01"
                                  "1|/q/二\x01"
                                  "5|imap://B|imap://A|a=2|b=1|"
                                  "/r=盘:removable:false|/z=Z:cloud:true");
    EXPECT_EQ(archiveLibraryIndexSignature({}), "derived-v4|0|||||");
}

TEST(LibraryFilters, NarrowTheListItsGroupsAndTheOtherMenus) {
    const auto index = indexOf(sample);
    const auto matched = std::make_shared<const SharedTextSet>(SharedTextSet{"1", "2", "9"});

    struct Case {
        LibraryFilters filters;
        Ids newest;
        Ids groups;
    };

    const Case cases[] = {
        {{}, {"3", "4", "1", "5", "2"}, {"3: 3 1", "4: 4", "5: 5 2"}},
        {{.libraryLocationFilter = "/r"}, {"4", "1", "2"}, {"4: 4", "1: 1", "2: 2"}},
        {{.libraryAccountFilter = "mail-account:b@x"}, {"3", "2"}, {"3: 3", "2: 2"}},
        {{.libraryMailboxFilter = "Sent"}, {"5", "2"}, {"5: 5 2"}},
        {{.libraryMailboxFilter = ""}, {}, {}},
        {{.matchedIDs = matched}, {"1", "2"}, {"1: 1", "2: 2"}},
        {{.libraryLocationFilter = "/r", .libraryAccountFilter = "mail-account:b@x", .matchedIDs = matched},
         {"2"},
         {"2: 2"}},
        {{.libraryLocationFilter = "/gone"}, {}, {}},
    };
    for (const Case& one : cases) {
        const VisibleEntries newest = visibleEntries(index, one.filters, newestFirst);
        EXPECT_EQ(ids(*index, newest.entries()), one.newest);
        EXPECT_EQ(groups(*index, visibleGroups(index, one.filters, newestFirst, newest).view()), one.groups);
        Ids oldest = one.newest;
        std::ranges::reverse(oldest);
        EXPECT_EQ(ids(*index, visibleEntries(index, one.filters, oldestFirst).entries()), oldest);
        for (EntryPosition position = 0; position < index->size(); ++position) {
            EXPECT_EQ(entryMatchesCurrentFilters(*index, position, one.filters),
                      std::ranges::count(one.newest, index->entry(position).record.id.str()) == 1);
        }
    }
    const auto counts = [](const auto& options) {
        std::vector<std::int64_t> found;
        for (const auto& option : options) found.push_back(option.count);
        return found;
    };
    using Counts = std::vector<std::int64_t>;
    // A menu isn't narrowed by its own filter, that of accounts not by the mailbox either.
    EXPECT_EQ(
        counts(accountFilterOptions(*index, {.libraryAccountFilter = "x", .libraryMailboxFilter = "Sent"})),
        (Counts{3, 2}));
    EXPECT_EQ(counts(accountFilterOptions(*index, {.libraryLocationFilter = "/r"})), (Counts{2, 1}));
    EXPECT_EQ(counts(locationFilterOptions(*index, {.libraryMailboxFilter = "Sent"})), (Counts{1, 1}));
    EXPECT_EQ(counts(locationFilterOptions(
                  *index, {.libraryLocationFilter = "/r", .libraryAccountFilter = "mail-account:a@x"})),
              (Counts{2, 1}));
}

TEST(LibrarySelection, RangesTogglesAndAnchors) {
    const std::vector<EntryPosition> list = {4, 2, 0, 3, 1};

    struct Click {
        EntryPosition entry;
        SelectionKeys keys;
        std::vector<EntryPosition> marked;
        EntryPosition anchor;
    };

    const SelectionKeys plain;
    const SelectionKeys shift{.shift = true};
    const SelectionKeys command{.command = true};
    const Click clicks[] = {
        {2, shift, {2}, 2}, // no anchor yet: as without the key
        {3, shift, {0, 2, 3}, 2},
        {4, shift, {2, 4}, 2},
        {1, command, {1, 2, 4}, 1},
        {2, command, {1, 4}, 2},
        {9, shift, {9}, 2}, // not in the list: the anchor stays
        {9, {.shift = true, .command = true}, {}, 9},
        {0, plain, {0}, 0},
        {0, {.shift = true, .command = true}, {0}, 0},
    };
    LibrarySelection selection;
    for (const Click& click : clicks) {
        selection.selectLibraryRow(click.entry, click.keys, list);
        EXPECT_EQ(selection.librarySelectedIDs(), click.marked) << click.entry;
        EXPECT_EQ(selection.libraryAnchorID(), click.anchor) << click.entry;
        EXPECT_EQ(selection.selectedID(), click.entry);
    }
    EXPECT_TRUE(selection.libraryRowSelected(0));
    EXPECT_FALSE(selection.libraryRowSelected(2));
}

TEST(LibrarySelection, FallsToTheFirstGroupAndMovesWithTheMail) {
    const auto index = indexOf(sample);
    const GroupsView all = index->subjectGroups(oldestFirst);
    LibrarySelection selection;
    selection.selectFirstVisibleIfNeeded({});
    EXPECT_EQ(selection.selectedID(), std::nullopt);
    selection.selectFirstVisibleIfNeeded(all);
    EXPECT_EQ(selection.selectedID(), 4U); // the latest of its thread
    EXPECT_TRUE(selection.libraryRowSelected(4));
    selection.selectFirstVisibleIfGone(index->sorted(newestFirst), {});
    EXPECT_EQ(selection.selectedID(), 4U);
    const std::vector<EntryPosition> others = {0, 3};
    EXPECT_EQ(selection.selectedEntry(others), std::nullopt);
    selection.selectFirstVisibleIfGone(others, {});
    EXPECT_EQ(selection.selectedID(), std::nullopt);

    selection.selectLibraryRow(1, {}, index->sorted(newestFirst));
    selection.selectLibraryRow(4, {.command = true}, index->sorted(newestFirst));
    const auto next = indexOf({sample[4], sample[0]});
    const LibrarySelection moved = selection.movedTo(*next, *index);
    EXPECT_EQ(moved.librarySelectedIDs(), std::vector<EntryPosition>{0});
    EXPECT_EQ(moved.selectedID(), 0U);
}

} // namespace
} // namespace corvane::testing
