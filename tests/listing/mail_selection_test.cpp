#include "listing/deletion/mail_selection.h"

#include <tuple>
#include <utility>

#include <gtest/gtest.h>

#include "listing/message_sketch.h"
#include "mailstore/index/year_counts.h"

namespace corvane::testing {
namespace {

TEST(MailSelection, KnowsWhatASearchByAccountAndReceiptFindsBesideTheList) {
    MessageList messages =
        makeAll({{.id = "/A/1.emlx"}, {.id = "/A/2.emlx"}, {.id = "/B/3.emlx", .mailbox = "Trash"}});
    messages[1].relatedMessageFileURLs = {
        {FileURL("/A/2.emlx"), FileURL("/B/7.emlx"), FileURL("/A/odd.emlx")}};
    MailSelectionMaker maker(std::make_shared<const MessageList>(messages));
    mailstore::UndownloadedYears ofA;
    ofA.partialByReceipt = {{2019, 4}};
    ofA.stored = {{1, 2024}, {2, 2025}, {3, 2024}, {9, 2020}};
    maker.add("imap://A", ofA);
    mailstore::UndownloadedYears ofB;
    ofB.aloneByReceipt = {{2018, 5}};
    ofB.stored = {{7, 2024}};
    maker.add("imap://B", ofB);
    const SharedMailSelection selection = std::move(maker).result();
    using Found = std::vector<std::tuple<std::string, std::string, std::int64_t>>;
    Found found;
    for (const MailMessageRecord& message : *selection->messages) {
        selection->visitElsewhere(message, [&](const std::string& account, std::int64_t year) {
            found.emplace_back(message.id.str(), account, year);
        });
    }
    EXPECT_EQ(found, (Found{{"/A/2.emlx", "imap://A", 2025},
                            {"/A/2.emlx", "imap://B", 2024},
                            {"/B/3.emlx", "imap://A", 2024}}));
    EXPECT_EQ(selection->unlisted.at("imap://A"), (CountByYear{{2020, 1}}));
    EXPECT_EQ(selection->partial.at("imap://A"), (CountByYear{{2019, 4}}));
    EXPECT_EQ(selection->serverAlone.at("imap://B"), (CountByYear{{2018, 5}}));
}

} // namespace
} // namespace corvane::testing
