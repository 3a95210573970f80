#include "listing/deletion/deletion_safety.h"

#include <cstdint>
#include <optional>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "listing/message_sketch.h"
#include "records/timestamps.h"

namespace corvane::testing {
namespace {

TEST(DeletionSafety, IsDeletableOnlyWhereAllIsProvenAndNothingIsHeldInPart) {
    struct {
        DeletionSafety safety;
        bool isDeletable;
    } const cases[] = {
        {{.local = 2, .archived = 2, .proofs = {.proven = 2}}, true},
        {{.local = 2, .archived = 2, .proofs = {.proven = 1}}, false}, // the other wasn't looked at
        {{.local = 2, .archived = 2, .serverOnly = 1, .proofs = {.proven = 2}, .partial = 1}, false},
        {{}, false},
    };

    for (const auto& [safety, isDeletable] : cases) EXPECT_EQ(safety.isDeletable(), isDeletable);
}

TEST(DeletionSafety, CountsOnlyWhatIsLocalAndArchived) {
    const MessageList messages = makeAll({{.id = "1", .identifier = "a"},
                                          {.id = "2", .identifier = "b"},
                                          {.id = "3", .identifier = "a2", .account = "imap://B"},
                                          {.id = "4", .identifier = "gone"},
                                          {.id = "5", .date = {}, .identifier = "c"},
                                          {.id = "6", .identifier = "a", .account = ""}});
    const SharedTextSet available = {"1", "2", "3", "5"};
    const SharedTextSet archived = {"1", "3", "4", "6"};
    const SharedTextSet setAside;
    const ProofTable proofs;
    const YearByID years = computeMessageYears(messages);
    const std::set<std::string> all;
    const std::set<std::string> onlyA = {"imap://A"};
    const CountByYear counts = {{2024, 10}, {2020, 1}};
    const CountByAccountAndYear byAccount = {{"imap://A", {{2024, 3}}}};
    const auto safety = [&](const auto& accounts, const std::set<std::int64_t>& chosen,
                            const SharedTextSet& local, const std::optional<std::string>& lookedAt = {}) {
        return deletionSafety(tallyMessages({messages, local, {archived, setAside, proofs}, years}), lookedAt,
                              chosen, {counts, byAccount, accounts});
    };
    const std::int64_t year = localYear(at(newYear2024));
    EXPECT_EQ(safety(all, {}, available), (DeletionSafety{4, 2, 7}));
    EXPECT_EQ(safety(onlyA, {year}, available), (DeletionSafety{2, 1, year == 2024 ? 1 : 0}));
    EXPECT_EQ(safety(onlyA, {}, available, "imap://B"), (DeletionSafety{1, 1, 0}));
    EXPECT_EQ(safety(all, {1999}, available), (DeletionSafety{0, 0, 0}));
    EXPECT_EQ(safety(std::set<std::string>{"legacy-unclassified"}, {}, {"6"}), (DeletionSafety{1, 1, 0}))
        << "no name of an account and an empty one are the same";
    EXPECT_EQ(safety(all, {}, {}).archived, 0) << "nothing is safe while nothing is known to be local";
}

} // namespace
} // namespace corvane::testing
