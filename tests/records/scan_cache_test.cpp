#include "records/json/json_outline.h"
#include "records/json/json_reader.h"
#include "records/json/json_writer.h"
#include "records/stores/scan_cache_forms.h"
#include "records/stores/scan_cache_store.h"
#include "sample_records.h"
#include "support/temporary_home.h"

namespace corvane::testing {
namespace {

MailScanCache randomCache(std::mt19937& random, std::size_t count) {
    MailScanCache cache;
    cache.scannedAt = Date(std::chrono::seconds(1700000000));
    cache.summary.accountNames = {"a", "b"};
    for (std::size_t number = 0; number < count; ++number)
        cache.messages.push_back(randomMessage(random, number));
    if (random() % 2 == 0) {
        cache.locallyAvailableMessageIDs.emplace();
        for (const auto& message : cache.messages) {
            if (random() % 2 == 0) cache.locallyAvailableMessageIDs->push_back(message.id);
        }
    }
    if (random() % 2 == 0) cache.localYearStats = {{2020, 1, 1, 1, 1, 1}};
    return cache;
}

std::string encodeInPieces(const MailScanCache& cache) {
    std::string text;
    const ScanCacheContent content{cache.scannedAt,
                                   &cache.summary,
                                   &cache.messages,
                                   cache.locallyAvailableMessageIDs ? &*cache.locallyAvailableMessageIDs
                                                                    : nullptr,
                                   cache.localYearStats ? &*cache.localYearStats : nullptr,
                                   cache.localAccountYearStats ? &*cache.localAccountYearStats : nullptr};
    encodeScanCache(content, [&](std::string_view chunk) { text += chunk; });
    return text;
}

TEST(ScanCacheFile, InPiecesAndInOneGoAgree) {
    std::mt19937 random(7);
    for (const std::size_t count : {0, 1, 2, 2047, 2048, 2049, 9000}) {
        const MailScanCache cache = randomCache(random, count);
        const std::string pieces = encodeInPieces(cache);
        EXPECT_EQ(pieces, encodeJson(cache));
        EXPECT_TRUE(decodeScanCache(pieces) == cache) << count;
        EXPECT_TRUE(decodeScanCache(pieces) == JsonReader().read<MailScanCache>(pieces)) << count;
        std::string escaped = pieces;
        escaped.replace(escaped.find(R"("messages")"), 2, R"("\u006d)");
        EXPECT_TRUE(decodeScanCache(escaped) == cache) << count;
    }
}

TEST(ScanCacheFile, IdentifiersShareTheirCharacters) {
    std::mt19937 random(3);
    MailScanCache cache = randomCache(random, 20);
    cache.locallyAvailableMessageIDs = {cache.messages[3].id, cache.messages[9].id};
    const MailScanCache read = decodeScanCache(encodeInPieces(cache));
    EXPECT_TRUE((*read.locallyAvailableMessageIDs)[1].sharesWith(read.messages[9].id));
    EXPECT_TRUE(read.messages[0].preview.sharesWith(read.messages[9].preview));
}

TEST(ScanCacheFile, EveryDamageIsAnErrorAndNotACrash) {
    std::mt19937 random(5);
    const std::string sound = encodeInPieces(randomCache(random, 3));
    for (std::size_t length = 0; length < sound.size(); ++length) {
        EXPECT_THROW(decodeScanCache(std::string_view(sound).substr(0, length)), JsonError) << length;
    }
    for (int round = 0; round < 3000; ++round) {
        std::string damaged = sound;
        damaged[random() % damaged.size()] = static_cast<char>(random());
        try {
            decodeScanCache(damaged);
        } catch (const JsonError&) { // what a damage inside a text gives is a sound cache with another text
        }
    }
    EXPECT_THROW(decodeScanCache(sound + "x"), JsonError);
    EXPECT_THROW(decodeScanCache(R"({"messages":[,]})"), JsonError);
    EXPECT_THROW(decodeScanCache("{}"), JsonError);
}

TEST(JsonOutline, PiecesHoldWholeElements) {
    const std::string array = R"([ {"a":"}]\"\\"} , [1,[2]], "x,y\\", 5 ,null ])";
    std::vector<std::string> pieces;
    JsonArrayPieces all(array, 1);
    while (const auto piece = all.next()) pieces.emplace_back(*piece);
    EXPECT_EQ(pieces, (std::vector<std::string>{R"({"a":"}]\"\\"})", "[1,[2]]", R"("x,y\\")", "5", "null"}));
}

TEST(ScanCacheStore, WritesTheSnapshotOnlyWithStatistics) {
    const TemporaryHome home;
    const MailScanCacheStore store{CorvaneAppSupport(home.platform())};
    EXPECT_FALSE(store.load());
    MailMessageRecord present = fullMessage(home.write("1.emlx", "x"));
    MailMessageRecord gone = fullMessage(home.at("2.emlx"));
    gone.relatedMessageFileURLs.reset();
    const std::vector<YearStat> years = {{2020, 2, 2, 2, 10, 1}, {2019, 3, 3, 3, 20, 1}};
    const std::vector<AccountYearStatGroup> groups;
    store.save({present, gone}, {}, nullptr, &years, &groups);
    ASSERT_TRUE(store.load());
    EXPECT_EQ(store.load()->locallyAvailableMessageIDs, (std::vector<SharedText>{present.id}));
    ASSERT_TRUE(store.loadHomeSnapshot());
    EXPECT_EQ(store.loadHomeSnapshot()->localMessageCount, 5);
    EXPECT_EQ(store.loadHomeSnapshot()->localMessageBytes, 30);
    store.save({present}, {}, nullptr, nullptr, nullptr);
    EXPECT_EQ(store.load()->messages.size(), 1U);
    EXPECT_EQ(store.loadHomeSnapshot()->localMessageCount, 5) << "an earlier snapshot stays";
}

} // namespace
} // namespace corvane::testing
