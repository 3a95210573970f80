#include "model/library/presence/presence_flow.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "mailstore/sample_mail_store.h"
#include "model/model_test.h"

namespace corvane {
namespace {

using enum ArchivedOriginalPresenceStatus;
using testing::SampleMailStore;
using testing::startOf2024;
using testing::waitUntilIdle;
using State = OriginalPresence::State;
using Statuses = std::vector<ArchivedOriginalPresenceStatus>;

ArchivedEntry entryOf(const std::string& id, const std::string& messageID = {}) {
    ArchivedEntry entry;
    entry.locationRootPath = "/archive";
    entry.record.id = id;
    if (!messageID.empty()) entry.record.messageIdentifier = messageID;
    entry.record.sender = "Some One <One@X.org>";
    entry.record.subject = id;
    entry.record.date = Date(std::chrono::seconds(startOf2024));
    return entry;
}

SharedEntryList listOf(std::vector<ArchivedEntry> entries) {
    return std::make_shared<const std::vector<ArchivedEntry>>(std::move(entries));
}

// One run of the program over a store.
struct PresenceRun {
    PresenceRun(const SampleMailStore& store, SharedEntryList entries)
      : context(store.platform) {
        testing::provideEventLoop();
        setEntries(std::move(entries));
    }

    void setEntries(SharedEntryList entries) {
        flow.setEntries(std::move(entries));
        waitUntilIdle(context.tasks);
    }

    const OriginalPresence& refresh(bool force) {
        flow.refreshArchivedOriginalPresenceIfNeeded(force);
        waitUntilIdle(context.tasks);
        EXPECT_FALSE(flow.archivedOriginalPresenceChecking());
        return *flow.presence();
    }

    ModelContext context;
    PresenceFlow flow{context};
};

// Mailbox 1 is an inbox; the others have names of trash in many languages.
const std::vector<std::string> trashNames = {"Deleted%20Messages",
                                             "Trash",
                                             "Bin",
                                             "Junk",
                                             "Spam",
                                             "%E5%B7%B2%E5%88%A0%E9%99%A4%E9%82%AE%E4%BB%B6",
                                             "%E5%BA%9F%E7%BA%B8%E7%AF%93",
                                             "%E5%9E%83%E5%9C%BE%E9%82%AE%E4%BB%B6"};
// Names that the program doesn't know: mail in them is still in Mail.
const std::vector<std::string> otherNames = {"Papierkorb", "Corbeille", "Papelera",
                                             "Cestino",    "Lixeira",   "%E3%82%B4%E3%83%9F%E7%AE%B1"};

TEST(Presence, TheLiveIndexTellsWhatIsThereAndWhatWasDeleted) {
    SampleMailStore store;
    const std::string account = std::string("imap://") + testing::firstAccount + "/";
    store.addMailbox(account + "INBOX", "");
    std::vector<ArchivedEntry> entries = {entryOf("mid:there", "There@X"),
                                          entryOf("mid:deleted", "deleted@x"), entryOf("ck:none")};
    Statuses expected = {present, missing, unknown};
    store.add({.rowID = 1, .messageID = 1, .header = "<THERE@x>"});
    std::int64_t row = 1;
    const auto addMoved = [&](const std::string& name, ArchivedOriginalPresenceStatus status) {
        const auto mailbox = store.addMailbox(account + name, "");
        ++row;
        store.add({.rowID = row, .mailbox = mailbox, .messageID = row, .header = "<" + name + "@x>"});
        entries.push_back(entryOf("mid:" + name, name + "@x"));
        expected.push_back(status);
    };
    for (const std::string& name : trashNames) addMoved(name, missing);
    for (const std::string& name : otherNames) addMoved(name, present);
    store.close();
    const auto list = listOf(entries);
    const auto before = store.tree();
    PresenceRun run(store, list);
    EXPECT_EQ(run.refresh(false).state(), State::unchecked);
    const OriginalPresence& found = run.refresh(true);
    EXPECT_EQ(found.state(), State::checked);
    EXPECT_EQ(found.statuses, expected);
    EXPECT_EQ(run.flow.archivedOriginalPresenceStatus((*list)[1]), missing);
    EXPECT_EQ(run.flow.archivedOriginalPresenceStatus(entries[1]), unknown) << "of another list";
    EXPECT_TRUE(store.changesSince(before).empty());

    PresenceRun next(store, list);
    EXPECT_EQ(next.flow.presence()->state(), State::unchecked) << "nobody has asked for it";
    EXPECT_EQ(next.refresh(false).statuses, expected);
    EXPECT_EQ(next.flow.presence()->checkedAt, run.flow.presence()->checkedAt);
}

TEST(Presence, AnIndexWithoutMessageIDsIsAskedByContent) {
    SampleMailStore store(SampleMailStore::IdentifierColumn::missing);
    store.addMailbox(std::string("imap://") + testing::firstAccount + "/INBOX", "");
    store.add({.rowID = 1, .subject = "mid:there", .senderAddress = "one@x.org"});
    store.add({.rowID = 2, .subject = "", .senderAddress = "one@x.org"});
    store.close();
    std::vector<ArchivedEntry> entries = {entryOf("mid:there", "a@x"), entryOf("mid:gone", "b@x"),
                                          entryOf("mid:undated", "c@x"), entryOf("mid:nobody", "d@x"),
                                          entryOf("mid:nosubject", "e@x")};
    entries[2].record.date.reset();
    entries[3].record.sender = "nobody";
    entries[4].record.subject = "无主题";
    PresenceRun run(store, listOf(entries));
    EXPECT_EQ(run.refresh(true).statuses, (Statuses{present, missing, unknown, unknown, present}));
    PresenceRun withoutTargets(store, listOf({entries[2]}));
    EXPECT_EQ(withoutTargets.refresh(true).state(), State::unavailable);
}

TEST(Presence, ALookThatFailsChangesNothingThatWasKnown) {
    SampleMailStore store;
    store.addMailbox(std::string("imap://") + testing::firstAccount + "/INBOX", "");
    store.add({.rowID = 1, .messageID = 1, .subject = "other", .header = "<a@x>"});
    store.close();
    const auto list = listOf({entryOf("mid:a", "a@x"), entryOf("mid:b", "b@x")});
    const Statuses known = {present, missing};
    PresenceRun run(store, list);
    ASSERT_EQ(run.refresh(true).statuses, known);
    const auto day = run.flow.presence()->checkedAt;
    const auto cache = [&] {
        return testing::readWhole(run.context.support.filePath("archived-original-presence-cache.json"));
    };
    const std::string cached = cache();
    const std::string aside = store.home.at("aside");

    const struct {
        const char* why;
        std::function<void()> spoil;
        bool isReadable;
    } cases[] = {
        // Subjects differ, so a question by content would call what is there missing.
        {"no answer to the question for Message-IDs",
         [&] {
             store.platform.setShellScript("sql=$(cat); case \"$sql\" in *messageId*) exit 1;; esac; echo "
                                           "\"$sql\" | /usr/bin/sqlite3 \"$@\"");
         },
         true},
        {"no shell", [&] { store.platform.shell = store.home.at("none"); }, true},
        {"no index", [&] { std::filesystem::rename(store.indexPath(), aside); }, false},
    };

    for (const auto& each : cases) {
        SCOPED_TRACE(each.why);
        each.spoil();
        EXPECT_EQ(run.refresh(true).statuses, known);
        EXPECT_EQ(run.flow.presence()->checkedAt, day);
        EXPECT_FALSE(run.flow.presence()->failureMessage);
        EXPECT_EQ(cache(), cached);

        PresenceRun fresh(store, listOf({entryOf("mid:new", "a@x")}));
        const OriginalPresence& nothing = fresh.refresh(true);
        EXPECT_EQ(nothing.state(), State::unavailable);
        const bool tellsOfAccess = nothing.failureMessage.value_or("").starts_with("没有完整磁盘访问权限");
        EXPECT_NE(tellsOfAccess, each.isReadable);
        EXPECT_EQ(cache(), cached) << "a question without an answer isn't remembered";
    }
}

TEST(Presence, OtherEntriesMakeItStaleAndAnotherOrderDoesNot) {
    SampleMailStore store;
    store.addMailbox(std::string("imap://") + testing::firstAccount + "/INBOX", "");
    store.add({.rowID = 1, .messageID = 1, .header = "<a@x>"});
    store.close();
    const ArchivedEntry a = entryOf("mid:a", "a@x");
    const ArchivedEntry b = entryOf("mid:b", "b@x");
    PresenceRun run(store, listOf({a, b}));
    run.refresh(true);
    run.setEntries(listOf({b, a}));
    EXPECT_EQ(run.flow.presence()->statuses, (Statuses{missing, present}));

    // An answer for entries that are the library's no more is dropped.
    run.flow.refreshArchivedOriginalPresenceIfNeeded(true);
    run.setEntries(listOf({a, entryOf("mid:b", "other@x")}));
    EXPECT_EQ(run.flow.presence()->state(), State::unchecked);
    EXPECT_FALSE(run.flow.archivedOriginalPresenceChecking());
    EXPECT_EQ(run.refresh(false).state(), State::unchecked);
    run.setEntries(listOf({a, b}));
    EXPECT_EQ(run.refresh(false).statuses, (Statuses{present, missing})) << "from the cache";
}

TEST(Presence, TheSignatureIsThatOfEarlierCaches) {
    ArchivedEntry a = entryOf("mid:x", "x");
    a.locationRootPath = "/a";
    ArchivedEntry b = entryOf("ck:1|寄|题");
    b.locationRootPath = "/b";
    EXPECT_EQ(archivedOriginalPresenceSignature({a, b}), "2|6699309095954341981");
    EXPECT_EQ(archivedOriginalPresenceSignature({b, a}), archivedOriginalPresenceSignature({a, b}));
}

} // namespace
} // namespace corvane
