#include "library/threads/thread_keys.h"

#include <map>
#include <numeric>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "library/entry_sketch.h"
#include "library/threads/subject_key.h"

namespace corvane::testing {
namespace {

TEST(SubjectKeys, StripPrefixesAndMakeShortNumbersAlike) {
    const std::pair<std::string, std::string> cases[] = {
        {"Re: 周报 2024-05 第3期", "周报 #-# 第#期"},
        {"周报 2023-11 第12期", "周报 #-# 第#期"},
        {" \nFwd: RE：回复:答复： 转: Hello\t", "hello"},
        {"re :x", "re :x"},
        {"Fw:\n x", "\n x"}, // only blanks go behind a prefix
        {"单号 12345678", "单号 #"},
        {"单号 123456789", "单号 123456789"},
        {"１２ 3", "１２ #"},
        {"3 1\uFE0F\u20E3 12\u20E3", "# 1\uFE0F\u20E3 #2\u20E3"}, // keycaps
        {"", "∅id"},
        {" \u3000", "∅id"},
        {"RE: 转发：", "∅id"},
        {"ÄRE:", "äre:"},
    };
    for (const auto& [subject, key] : cases) EXPECT_EQ(normalizedSubjectKey(subject, "id"), key) << subject;
    std::string stacked;
    for (int number = 0; number < 1'000'000; ++number) stacked += number % 2 == 0 ? "Re:" : "转：";
    EXPECT_EQ(normalizedSubjectKey(stacked, "id"), "∅id");
    EXPECT_EQ(normalizedSubjectKey(stacked + "x", "id"), "x");
    EXPECT_EQ(normalizedSubjectKey(std::string(1'000'000, '7'), "id").size(), 1'000'000U);
}

// The rules as they are told, with texts for keys and unions over the plain list.
std::vector<EntryPosition> rootsByTheRules(const std::vector<ArchivedEntry>& entries) {
    std::vector<EntryPosition> parent(entries.size());
    std::iota(parent.begin(), parent.end(), EntryPosition{0});
    const auto root = [&](EntryPosition at) {
        while (parent[at] != at) at = parent[at];
        return at;
    };
    using Owners = std::map<std::string, EntryPosition>;
    const auto join = [&](Owners& owners, const std::string& key, EntryPosition at) {
        const auto [owner, isNew] = owners.emplace(key, at);
        if (!isNew) parent[root(at)] = root(owner->second);
    };
    const auto subject = [&](EntryPosition at) {
        return normalizedSubjectKey(entries[at].record.subject, entries[at].id());
    };
    Owners messages;
    Owners absent;
    Owners subjects;
    for (EntryPosition at = 0; at < entries.size(); ++at) {
        if (entries[at].record.messageIdentifier)
            join(messages, entries[at].record.messageIdentifier->str(), at);
    }
    for (EntryPosition at = 0; at < entries.size(); ++at) {
        for (const SharedText& reference :
             entries[at].record.referencedMessageIdentifiers.value_or(std::vector<SharedText>())) {
            const bool isKnown = messages.contains(reference.str());
            join(isKnown ? messages : absent,
                 isKnown ? reference.str() : subject(at) + '\x01' + reference.str(), at);
        }
    }
    for (EntryPosition at = 0; at < entries.size(); ++at) {
        if (!subject(at).starts_with("∅")) join(subjects, subject(at), at);
    }
    for (EntryPosition at = 0; at < entries.size(); ++at) parent[at] = root(at);
    return parent;
}

TEST(Threads, AreThoseOfTheRulesForRandomMail) {
    std::mt19937 random(11);
    const std::vector<std::string> subjects = {"", "Re:", "∅", "a", "Re: A", "b 1", "b 22", "c", "d", "e"};
    for (int round = 0; round < 300; ++round) {
        std::vector<EntrySketch> sketches;
        const std::size_t count = random() % 30;
        for (std::size_t number = 0; number < count; ++number) {
            EntrySketch sketch{.id = fmt::format("{}", number)};
            if (random() % 3 != 0) sketch.subject = subjects[random() % subjects.size()];
            if (random() % 2 == 0) sketch.identifier = fmt::format("m{}", random() % 20);
            for (std::size_t references = random() % 3; references > 0; --references)
                sketch.references.push_back(fmt::format("m{}", random() % 40));
            sketches.push_back(std::move(sketch));
        }
        const auto entries = makeEntries(sketches);
        ASSERT_EQ(threadRoots(*entries), rootsByTheRules(*entries)) << round;
    }
}

TEST(Threads, HostileReferencesTakeNearLinearTime) {
    constexpr std::size_t many = 100'000;
    std::vector<EntrySketch> ring;
    std::vector<EntrySketch> crowd;
    for (std::size_t number = 0; number < many; ++number) {
        ring.push_back({.id = fmt::format("{}", number),
                        .subject = fmt::format("1234567890{}", number),
                        .identifier = fmt::format("m{}", number),
                        .references = {fmt::format("m{}", (number + 1) % many), fmt::format("m{}", number)}});
        crowd.push_back({.id = fmt::format("{}", number), .subject = "Re: same", .references = {"absent"}});
    }
    for (const auto& sketches : {ring, crowd}) {
        const auto roots = threadRoots(*makeEntries(sketches));
        EXPECT_EQ(std::set<EntryPosition>(roots.begin(), roots.end()).size(), 1U);
    }
}

} // namespace
} // namespace corvane::testing
