#include <algorithm>
#include <chrono>
#include <system_error>

#include "records/json/json_form.h"
#include "records/stores/account_cache_store.h"
#include "records/stores/library_snapshot_store.h"
#include "records/stores/presence_cache_store.h"
#include "support/temporary_home.h"

namespace corvane::testing {
namespace {

std::string supportFolder(const TemporaryHome& home) {
    return home.platform().applicationSupportDirectory() + "/Corvane";
}

TEST(AccountCache, BelongsToOneMailRoot) {
    const TemporaryHome home;
    const MailAccountCacheStore store{CorvaneAppSupport(home.platform())};
    EXPECT_FALSE(store.load("/a"));
    MailAccount account;
    account.urlPrefix = "imap://X";
    account.folders = {{"收件箱", 3}};
    account.duplicationNote = "与「b」高度重复";
    store.save("/a", {account});
    EXPECT_EQ(store.load("/a"), std::vector{account});
    EXPECT_FALSE(store.load("/b"));
    home.write(supportFolder(home) + "/mail-account-cache.json", "{\"cachedAt\":1}");
    EXPECT_THROW((void)store.load("/a"), JsonError);
}

TEST(PresenceCache, BelongsToOneSignature) {
    const TemporaryHome home;
    const ArchivedOriginalPresenceCacheStore store{CorvaneAppSupport(home.platform())};
    std::vector<ArchivedEntry> entries(2);
    entries[0].locationRootPath = entries[1].locationRootPath = "root";
    entries[0].record.id = "mid:\"b\"\n";
    entries[1].record.id = "mid:a";
    using enum ArchivedOriginalPresenceStatus;
    const Date day(std::chrono::seconds(7));
    store.save("s", day, entries, {unknown, missing});
    EXPECT_EQ(store.load("s")->cachedAt, day);
    EXPECT_EQ(store.load("s")->statusesByEntryID,
              (PresenceByEntryID{{"root\x01mid:a", missing}, {"root\x01mid:\"b\"\n", unknown}}));
    EXPECT_FALSE(store.load("t"));
    EXPECT_FALSE(store.statuses("t", entries));
    EXPECT_EQ(store.statuses("s", entries)->byPosition, (std::vector{unknown, missing}));
    std::ranges::reverse(entries);
    entries.emplace_back();
    EXPECT_EQ(store.statuses("s", entries)->byPosition, (std::vector{missing, unknown, unknown}));
    home.write(supportFolder(home) + "/archived-original-presence-cache.json",
               R"({"cachedAt":"2024-01-01T00:00:00Z","signature":"s","statusesByEntryID":{"a":"gone"}})");
    EXPECT_THROW((void)store.load("s"), JsonError);
}

TEST(LibrarySnapshot, KeepsEntriesAndLocations) {
    const TemporaryHome home;
    const ArchiveLibrarySnapshotStore store{CorvaneAppSupport(home.platform())};
    ArchivedEntry entry;
    entry.record.id = "mid:a";
    entry.locationRootPath = "/archive";
    const std::vector<ArchiveLocation> locations = {
        {"/archive", "归档", ArchiveLocation::Kind::removable, false, 1}};
    store.save({entry}, locations, {"mid:a"});
    const auto snapshot = store.load();
    ASSERT_TRUE(snapshot);
    EXPECT_EQ(snapshot->entries, std::vector{entry});
    EXPECT_EQ(snapshot->locations, locations);
    EXPECT_EQ(snapshot->archivedBaseIDs, std::vector{entry.record.id});
    EXPECT_EQ(entry.id(), std::string("/archive\x01mid:a"));
}

TEST(Caches, ThatCannotBeWrittenAreIgnored) {
    const TemporaryHome home;
    home.write(supportFolder(home), "a file where the folder should be");
    const CorvaneAppSupport support(home.platform());
    MailAccountCacheStore(support).save("/a", {});
    EXPECT_THROW(support.baseDirectory(true), std::system_error);
}

} // namespace
} // namespace corvane::testing
