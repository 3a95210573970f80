#include "listing/deletion/found_by_mail.h"

#include <tuple>
#include <utility>

#include <gtest/gtest.h>

#include "library/entry_sketch.h"
#include "listing/deletion/proven_entries.h"
#include "listing/message_sketch.h"
#include "mailstore/index/downloads_by_year.h"

namespace corvane::testing {
namespace {

TEST(FoundByMail, KnowsWhatASearchByAccountAndReceiptFindsBesideTheList) {
    MessageList messages =
        makeAll({{.id = "/A/1.emlx"}, {.id = "/A/2.emlx"}, {.id = "/B/3.emlx", .mailbox = "Trash"}});
    messages[1].relatedMessageFileURLs = {
        {FileURL("/A/2.emlx"), FileURL("/B/7.emlx"), FileURL("/A/odd.emlx")}};
    FoundByMailMaker maker(std::make_shared<const MessageList>(messages), {});
    mailstore::DownloadsByYear ofA;
    ofA.partialByReceipt = {{2019, 4}};
    ofA.storedRows = {{1, 2024}, {2, 2025}, {3, 2024}, {9, 2020}};
    maker.add("imap://A", ofA);
    mailstore::DownloadsByYear ofB;
    ofB.aloneByReceipt = {{2018, 5}};
    ofB.storedRows = {{7, 2024}};
    maker.add("imap://B", ofB);
    const SharedFoundByMail found = std::move(maker).result();
    using Elsewhere = std::vector<std::tuple<std::string, std::string, std::int64_t>>;
    Elsewhere elsewhere;
    for (const MailMessageRecord& message : *found->messages) {
        found->visitElsewhere(message, [&](const std::string& account, std::int64_t year) {
            elsewhere.emplace_back(message.id.str(), account, year);
        });
    }
    EXPECT_EQ(elsewhere, (Elsewhere{{"/A/2.emlx", "imap://A", 2025},
                                    {"/A/2.emlx", "imap://B", 2024},
                                    {"/B/3.emlx", "imap://A", 2024}}));
    EXPECT_EQ(found->unlisted.at("imap://A"), (CountByYear{{2020, 1}}));
    EXPECT_EQ(found->partial.at("imap://A"), (CountByYear{{2019, 4}}));
    EXPECT_EQ(found->serverAlone.at("imap://B"), (CountByYear{{2018, 5}}));
}

TEST(FreeingEntries, AreNoMoreThanTheOriginalsThatGo) {
    MessageList messages =
        makeAll({{.id = "/1.emlx", .identifier = "a"}, {.id = "/2.emlx", .identifier = "b"}});
    messages[1].relatedMessageFileURLs = {{FileURL("/2.emlx"), FileURL("/3.emlx")}};
    std::vector<ArchivedEntry> entries = *makeEntries({{.id = "mid:a", .identifier = "a"},
                                                       {.id = "mid:a", .identifier = "a", .root = "/second"},
                                                       {.id = "mid:b#v1", .identifier = "b"},
                                                       {.id = "mid:b#v2", .identifier = "b", .size = 11},
                                                       {.id = "mid:b#v3", .identifier = "b", .size = 12},
                                                       {.id = "mid:c", .identifier = "c"}});
    AvailabilityResult available;
    available.locallyAvailableIDs =
        std::make_shared<const SharedTextSet>(SharedTextSet{"/1.emlx", "/2.emlx"});
    EXPECT_EQ(freeingEntries(entries, {true, true, true, true, true, false}, messages, available),
              (std::vector<bool>{true, false, true, true, false, false}));
}

} // namespace
} // namespace corvane::testing
