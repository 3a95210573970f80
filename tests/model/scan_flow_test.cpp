#include "model/mail/scan/scan_flow.h"

#include <filesystem>

#include <fmt/format.h>
#include <sqlite3.h>

#include "model/corvane_view_model.h"
#include "model/model_test.h"
#include "records/stores/scan_cache_store.h"
#include "support/sample_messages.h"

namespace corvane::testing {
namespace {

using Kind = MailScanState::Kind;

class ScanFlowTest : public ModelTest {
  protected:
    ScanFlowTest() { waitUntilIdle(context_.tasks); }

    // The result of a whole scan in the cache, with the home snapshot that belongs to it.
    void cacheScanOf(const std::vector<MessageSketch>& sketches) {
        const MessageList messages = sampleMessages(home_, sketches);
        const std::vector<YearStat> byYear = computeYearStats(allOf(messages));
        const std::vector<AccountYearStatGroup> byAccount;
        EXPECT_FALSE(store_.save(messages, makeSummary(allOf(messages), 9), nullptr, &byYear, &byAccount));
    }

    void restore() {
        scan_.loadCachedScanIfNeeded(false);
        waitUntilIdle(context_.tasks);
    }

    // A scan that has shown some rows and has no end yet: its job waits behind the steps that a test makes.
    void beginScanThatShows(const std::vector<MessageSketch>& sketches) {
        scan_.scan();
        auto listed = std::make_shared<const MessageList>(sampleMessages(home_, sketches));
        MailScanSummary summary = makeSummary(allOf(*listed), 5);
        model_.mail().catalog.showProgress(MessageSet::passing(std::move(listed)), std::move(summary));
    }

    [[nodiscard]] std::size_t shownMessages() const { return model_.mail().catalog.messages()->size(); }

    [[nodiscard]] bool isPartial() const { return model_.mail().catalog.state()->isPartial(); }

    ModelContext context_{platform_};
    MailScanCacheStore store_{context_.support};
    mutable CorvaneViewModel model_{context_};
    ScanFlow& scan_ = model_.mail().scanFlow;
};

TEST_F(ScanFlowTest, WhatACancelledScanHasShownIsPartialUntilTheNextWholeOne) {
    cacheScanOf({{"a"}, {"b"}, {"c"}});
    EXPECT_TRUE(scan_.isLastScanAwaited());
    restore();
    EXPECT_FALSE(scan_.isLastScanAwaited());
    EXPECT_FALSE(isPartial());
    const auto whole = store_.cachedScanTime();

    beginScanThatShows({{"a"}});
    scan_.cancelScan();
    waitUntilIdle(context_.tasks);
    EXPECT_EQ(scan_.state().kind, Kind::idle);
    EXPECT_TRUE(isPartial());
    EXPECT_EQ(shownMessages(), 1U) << "what was listed stays";
    EXPECT_EQ(scan_.restorableScanTime(), whole);
    scan_.refreshAllMailData();
    scan_.cancelScan();
    EXPECT_TRUE(isPartial()) << "a refresh that ends before its scan changes nothing";

    restore();
    EXPECT_FALSE(isPartial());
    EXPECT_EQ(shownMessages(), 3U);
    EXPECT_EQ(scan_.restorableScanTime(), std::nullopt);
}

TEST_F(ScanFlowTest, AFailureBehindRowsLeavesThemPartialAndOneBeforeThemBringsAllBack) {
    cacheScanOf({{"a"}, {"b"}});
    restore();
    home_.write("Library/Mail/V10/MailData/Envelope Index", "no database");
    scan_.scan();
    waitUntilIdle(context_.tasks);
    EXPECT_EQ(scan_.state().kind, Kind::failed);
    EXPECT_FALSE(isPartial());
    EXPECT_EQ(shownMessages(), 2U);

    beginScanThatShows({{"a"}});
    waitUntilIdle(context_.tasks);
    EXPECT_EQ(scan_.state().kind, Kind::failed);
    EXPECT_TRUE(isPartial());
    scan_.scan(); // fails before it has shown anything
    waitUntilIdle(context_.tasks);
    EXPECT_TRUE(isPartial()) << "what is brought back is as partial as it was";
    EXPECT_EQ(shownMessages(), 1U);
}

TEST_F(ScanFlowTest, AStoreThatIsTakenAwayDuringAScanLeavesWhatWasKnown) {
    cacheScanOf({{"a"}, {"b"}});
    restore();
    const std::string mail = home_.at("Library/Mail");
    const std::string index = home_.write("Library/Mail/V10/MailData/Envelope Index", "");
    sqlite3* made = nullptr;
    ASSERT_EQ(sqlite3_open(index.c_str(), &made), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(made, "CREATE TABLE messages(x)", nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(made);
    platform_.setShellScript(fmt::format("cat >/dev/null; mv '{0}' '{0}.gone' 2>/dev/null; echo '[]'", mail));
    scan_.scan();
    waitUntilIdle(context_.tasks);
    EXPECT_EQ(scan_.state().kind, Kind::failed);
    EXPECT_TRUE(std::filesystem::exists(mail + ".gone")) << "the scan has asked the shell";
    EXPECT_EQ(shownMessages(), 2U);
    EXPECT_EQ(store_.load()->messages.size(), 2U);
}

TEST_F(ScanFlowTest, CancellingWhileAccountsAreReadCancelsTheWholeRefresh) {
    cacheScanOf({{"a"}});
    restore();
    bool isAnswered = false;
    QObject::connect(&model_.mail().accounts, &AccountDirectory::fullRefreshFoundNone,
                     [&] { isAnswered = true; });
    scan_.refreshAllMailData();
    scan_.cancelScan();
    waitUntilIdle(context_.tasks);
    EXPECT_EQ(scan_.state().kind, Kind::idle);
    EXPECT_EQ(shownMessages(), 1U);
    EXPECT_FALSE(isAnswered) << "nobody asks any more";
}

TEST_F(ScanFlowTest, AResultDroppedForARefreshThatIsCancelledIsReadAgain) {
    cacheScanOf({{"a"}});
    home_.write("Library/Mail/V10/MailData/Envelope Index", "no database");
    platform_.setShellScript("sleep 1"); // the accounts take longer than the cache
    scan_.loadCachedScanIfNeeded(false);
    scan_.refreshAllMailData();
    QObject::connect(&scan_, &ScanFlow::restorableChanged, [&] {
        if (scan_.state().isScanning() && !scan_.isRestoring()) scan_.cancelScan();
    });
    waitUntilIdle(context_.tasks);
    EXPECT_EQ(scan_.state().kind, Kind::finished);
    EXPECT_EQ(shownMessages(), 1U);
}

TEST_F(ScanFlowTest, ASnapshotOfAnotherScanIsNotShown) {
    const auto snapshotsShown = [&] {
        int shown = 0;
        CorvaneViewModel model(context_);
        QObject::connect(&model.mail().scanFlow, &ScanFlow::homeSnapshotApplied, [&] { ++shown; });
        model.mail().scanFlow.loadCachedScanIfNeeded(false);
        waitUntilIdle(context_.tasks);
        return shown;
    };
    cacheScanOf({});
    EXPECT_EQ(snapshotsShown(), 1);
    store_.saveHomeSnapshot(Date(std::chrono::seconds(5)), {}, {}, {});
    EXPECT_EQ(snapshotsShown(), 0);
    EXPECT_EQ(store_.loadHomeSnapshot()->scannedAt, store_.cachedScanTime()) << "made anew from the cache";
    std::filesystem::remove(context_.support.filePath("last-scan-cache.json"));
    EXPECT_EQ(snapshotsShown(), 0);
}

TEST_F(ScanFlowTest, ACacheThatHoldsWhatIsKnownIsNotWrittenAgain) {
    cacheScanOf({{"a"}, {"b"}});
    const auto isWrittenByAStart = [&] {
        const FileStamp before = store_.stamp();
        store_.saveHomeSnapshot(*store_.cachedScanTime(), {}, {}, {});
        CorvaneViewModel model(context_);
        model.mail().scanFlow.loadCachedScanIfNeeded(false);
        waitUntilIdle(context_.tasks);
        EXPECT_FALSE(store_.loadHomeSnapshot()->localYearStats.empty());
        return store_.stamp() != before;
    };
    EXPECT_TRUE(isWrittenByAStart()) << "it has no statistics by account";
    EXPECT_FALSE(isWrittenByAStart());
    std::filesystem::remove(store_.load()->messages.front().fileURL.path().str());
    EXPECT_FALSE(isWrittenByAStart()) << "files aren't looked for at a start";
    store_.save(store_.load()->messages, {}, nullptr, nullptr, nullptr);
    EXPECT_TRUE(isWrittenByAStart());
}

TEST_F(ScanFlowTest, OnlyAWholeScanWithoutMessagesReplacesTheCachedOne) {
    cacheScanOf({{"a"}});
    const auto cachedAfter = [&](bool isComplete) {
        model_.mail().catalog.setMessages(MessageSet::make(std::make_shared<const MessageList>(), isComplete),
                                          {});
        waitUntilIdle(context_.tasks);
        return store_.load()->messages.size();
    };
    EXPECT_EQ(cachedAfter(false), 1U);
    model_.mail().catalog.refreshAvailabilityCacheAsync(true);
    waitUntilIdle(context_.tasks);
    EXPECT_EQ(cachedAfter(true), 0U);
    EXPECT_TRUE(model_.mail().catalog.cachedLocalYearStats().empty());
}

TEST_F(ScanFlowTest, RowsOfARunningScanLeaveTheCandidateCountAlone) {
    scan_.scan();
    model_.archiving().candidates.setKnownCandidateCount(7);
    auto listed = std::make_shared<const MessageList>(sampleMessages(home_, {{"a"}}));
    model_.mail().catalog.showProgress(MessageSet::passing(std::move(listed)), {});
    EXPECT_TRUE(model_.archiving().candidates.archiveCandidateCountReady());
    EXPECT_EQ(model_.archiving().candidates.archiveCandidateCount(), 7);
}

TEST_F(ScanFlowTest, AYearOrAccountThatHasGoneIsNoFilterAnyMore) {
    model_.mail().filters.setFilterAccountPrefixes({"imap://A", "imap://gone"});
    model_.mail().filters.set(&ListFilters::filterYears, {2019, 1999});
    cacheScanOf({{"a", 2019, "imap://A"}});
    restore();
    EXPECT_EQ(model_.mail().filters.filterAccountPrefixes(), std::set<std::string>{"imap://A"});
    EXPECT_EQ(model_.mail().filters.list().filterYears, std::set<std::int64_t>{2019});
    model_.mail().filters.setFilterAccountPrefixes({"imap://elsewhere"});
    model_.mail().catalog.refreshAvailabilityCacheAsync(true);
    waitUntilIdle(context_.tasks);
    EXPECT_EQ(model_.mail().filters.filterAccountPrefixes().size(), 1U) << "what is asked for later is meant";
}

} // namespace
} // namespace corvane::testing
