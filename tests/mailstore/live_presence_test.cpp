#include "mailstore/index/live_presence.h"

#include <chrono>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mailstore/sample_mail_store.h"

namespace corvane::mailstore {
namespace {

namespace fs = std::filesystem;

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using testing::SampleMailStore;
using testing::startOf2024;
using ::testing::UnorderedElementsAre;

Date dateAt(std::int64_t seconds) {
    return Date(std::chrono::seconds(seconds));
}

// Mailbox 1 is an inbox, 2 the trash, 3 a folder in the trash.
struct LiveStore : SampleMailStore {
    explicit LiveStore(IdentifierColumn column = IdentifierColumn::present)
      : SampleMailStore(column) {
        const std::string account = std::string("imap://") + testing::firstAccount;
        addMailbox(account + "/INBOX", std::string(testing::firstAccount) + "/INBOX.mbox/Data");
        addMailbox(account + "/Deleted%20Messages", "");
        addMailbox(account + "/Deleted%20Messages/Old", "");
    }

    // Those that are there.
    [[nodiscard]] auto identifiers(const std::vector<std::string_view>& targets) const {
        const auto isLive = liveMessageIdentifierPresence(context, root, targets);
        auto live = isLive ? std::optional(std::vector<std::string_view>()) : std::nullopt;
        for (std::size_t at = 0; isLive && at < targets.size(); ++at)
            if ((*isLive)[at]) live->push_back(targets[at]);
        return live;
    }

    [[nodiscard]] auto contents(const std::vector<ContentPresenceTarget>& targets) const {
        return liveMessagePresenceByContent(context, root, targets);
    }

    [[nodiscard]] auto header(std::string_view identifier) const {
        return liveMessageOriginalIDHeader(context, root, identifier);
    }
};

TEST(LivePresence, IdentifiersAreComparedInTheirNormalForm) {
    LiveStore store;
    store.add({.rowID = 1, .messageID = 1, .header = " <ABC@x> "});
    store.add({.rowID = 2, .messageID = 2, .header = "=?utf-8?Q?it's@x?="});
    store.add({.rowID = 3, .mailbox = 2, .messageID = 3, .header = "<deleted@x>"});
    store.add({.rowID = 4, .mailbox = 3, .messageID = 4, .header = "kept@x"});
    // One copy in the trash, one not.
    store.add({.rowID = 5, .mailbox = 2, .messageID = 5, .header = "<both@x>"});
    store.add({.rowID = 6, .messageID = 5});
    store.close();
    const auto before = store.tree();
    EXPECT_THAT(
        store.identifiers({"abc@x", "it's@x", "deleted@x", "kept@x", "both@x", "never@x", "", "abc@x"})
            .value(),
        ElementsAre("abc@x", "it's@x", "kept@x", "both@x", "abc@x"));
    EXPECT_THAT(store.identifiers({}).value(), IsEmpty());
    EXPECT_THAT(store.changesSince(before), IsEmpty());
}

TEST(LivePresence, ContentMatchesWithinTwoDays) {
    LiveStore store;
    store.add({.rowID = 1, .subject = "Re: Plan", .senderAddress = "A@X.org", .date = startOf2024});
    store.add({.rowID = 2, .mailbox = 2, .subject = "Gone", .senderAddress = "a@x.org"});
    store.add({.rowID = 3, .subject = "O'Brien", .senderAddress = "o'b@x.org", .date = startOf2024});
    store.add({.rowID = 4, .subject = "As text", .senderAddress = "t@x.org", .date = startOf2024});
    store.add({.rowID = 5, .subject = "Undated", .senderAddress = "a@x.org", .date = 0});
    store.add({.rowID = 6, .subject = "Often", .senderAddress = "a@x.org", .date = startOf2024 - 900'000});
    store.add({.rowID = 7, .subject = "often", .senderAddress = "a@x.org", .date = startOf2024 + 900'000});
    store.execute("UPDATE messages SET date_received = '1704067200.5' WHERE rowid = 4");
    store.execute("UPDATE messages SET subject_prefix = 'Re: ' WHERE rowid = 3");
    store.close();

    struct {
        const char* key;
        const char* sender;
        const char* subject;
        std::int64_t date;
        bool isPresent;
    } const cases[] = {
        {"same", "a@x.org", "Re: Plan", startOf2024, true},
        {"case", " A@x.ORG\n", " RE: PLAN ", startOf2024, true},
        {"later", "a@x.org", "re: plan", startOf2024 + 172'800, true},
        {"too late", "a@x.org", "re: plan", startOf2024 + 172'801, false},
        {"earlier", "a@x.org", "re: plan", startOf2024 - 172'800, true},
        {"too early", "a@x.org", "re: plan", startOf2024 - 172'801, false},
        {"prefix", "a@x.org", "plan", startOf2024, false},
        {"other sender", "b@x.org", "re: plan", startOf2024, false},
        {"no sender", " ", "re: plan", startOf2024, false},
        {"trash", "a@x.org", "gone", startOf2024, false},
        {"apostrophe", "o'b@x.org", "re: o'brien", startOf2024, true},
        {"text date", "t@x.org", "as text", startOf2024, true},
        {"no date", "a@x.org", "undated", 0, false},
        {"between", "a@x.org", "often", startOf2024, false},
        {"second", "a@x.org", "often", startOf2024 + 900'001, true},
    };

    std::vector<ContentPresenceTarget> targets;
    SharedTextSet expected;
    for (const auto& each : cases) {
        targets.push_back({each.key, each.sender, each.subject, dateAt(each.date)});
        if (each.isPresent) expected.insert(each.key);
    }
    EXPECT_EQ(store.contents(targets), expected);
    EXPECT_THAT(store.contents({}).value(), IsEmpty());
}

TEST(LivePresence, AnyNumberOfSendersIsAsked) {
    LiveStore store;
    store.add({.rowID = 1, .senderAddress = "sender7999@a-rather-long-host-name.example.org"});
    store.add({.rowID = 2, .senderAddress = "sender0@a-rather-long-host-name.example.org"});
    store.close();
    std::vector<ContentPresenceTarget> targets;
    targets.reserve(8'000);
    for (int i = 0; i < 8'000; ++i)
        targets.push_back({std::to_string(i), fmt::format("sender{}@a-rather-long-host-name.example.org", i),
                           "subject", dateAt(startOf2024)});
    EXPECT_THAT(store.contents(targets).value(), UnorderedElementsAre("0", "7999"));
}

// None of them makes the question fail, and each is found where it is there.
TEST(LivePresence, OddSendersCostOnlyThemselves) {
    using std::string_literals::operator""s;
    const std::vector<std::string> senders = {std::string(300'000, 'x') + "@x.org",
                                              "a\nb;\n.quit\n@x.org",
                                              "a\r\nb@x.org",
                                              "nul\0@x.org"s,
                                              "o''b@x.org",
                                              "plain@x.org"};
    LiveStore store;
    std::vector<ContentPresenceTarget> targets;
    SharedTextSet all;
    for (std::size_t i = 0; i < senders.size(); ++i) {
        store.add({.rowID = static_cast<std::int64_t>(i) + 1, .senderAddress = senders[i]});
        targets.push_back({std::to_string(i), senders[i], "subject", dateAt(startOf2024)});
        all.insert(SharedText(std::to_string(i)));
    }
    store.close();
    targets.push_back({"gone", "gone\0@x.org"s, "subject", dateAt(startOf2024)});
    EXPECT_EQ(store.contents(targets), all);
}

TEST(LivePresence, NoAnswerIsNotAnEmptyOne) {
    const std::vector<std::string_view> identifiers = {"a@x"};
    const std::vector<ContentPresenceTarget> targets = {{"1", "a@x", "s", dateAt(startOf2024)}};
    const auto expectNoAnswer = [&](const LiveStore& from, const char* why) {
        EXPECT_EQ(from.identifiers(identifiers), std::nullopt) << why;
        EXPECT_EQ(from.contents(targets), std::nullopt) << why;
        EXPECT_EQ(from.header("a@x"), std::unexpected(NoOriginal::noAnswer)) << why;
    };
    LiveStore withoutColumn(SampleMailStore::IdentifierColumn::missing);
    withoutColumn.close();
    EXPECT_EQ(withoutColumn.identifiers(identifiers), std::nullopt);
    EXPECT_THAT(withoutColumn.contents(targets).value(), IsEmpty());

    LiveStore store;
    store.add({.rowID = 1, .messageID = 1, .senderAddress = "a@x", .header = "<a@x>"});
    store.close();
    {
        const testing::LockingWriter writer(store.indexPath());
        expectNoAnswer(store, "locked");
    }
    for (const char* script : {"exit 1", "echo '{}'", "echo '[{\"messageId\": \"<a@x>\"'", "echo no json"}) {
        store.platform.setShellScript(script);
        expectNoAnswer(store, script);
    }
    store.platform.setShellScript("exit 0");
    EXPECT_THAT(store.identifiers(identifiers).value(), IsEmpty());
    store.platform.shell = store.home.at("missing");
    expectNoAnswer(store, "no shell");
    store.platform.shell = "/usr/bin/sqlite3";
    fs::remove(store.indexPath());
    expectNoAnswer(store, "no index");
}

TEST(LivePresence, TheHeaderOfTheNewestLiveCopyIsGivenAsStored) {
    LiveStore store;
    store.add({.rowID = 1, .messageID = 1, .date = startOf2024, .header = "<Old@X>"});
    store.add({.rowID = 2, .messageID = 2, .date = startOf2024 + 5, .header = " \t<OLD@x>\r\n"});
    store.add({.rowID = 3, .mailbox = 2, .messageID = 3, .date = startOf2024 + 9, .header = "<oLd@x>"});
    store.add({.rowID = 4, .messageID = 4, .header = "it's@x"});
    store.close();
    EXPECT_EQ(store.header("<old@X> "), " \t<OLD@x>\r\n");
    EXPECT_EQ(store.header("it's@x"), "it's@x");
    for (const char* const absent : {"never@x", " <> ", "' OR 1=1 --"})
        EXPECT_EQ(store.header(absent), std::unexpected(NoOriginal::notThere));
}

} // namespace
} // namespace corvane::mailstore
