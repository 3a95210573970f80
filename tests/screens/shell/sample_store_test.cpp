#include <cstdlib>
#include <filesystem>

#include <QSignalSpy>
#include <gtest/gtest.h>

#include "screens/shell/start/sample_store.h"
#include "support/temporary_home.h"

namespace corvane {

namespace {

constexpr int patienceMilliseconds = 60'000;

std::string realMaker() {
    return std::getenv("CORVANE_SAMPLE_MAKER"); // NOLINT(concurrency-mt-unsafe)
}

// A context over a home of its own.
struct Fixture {
    testing::TemporaryHome home;
    ModelContext context{home.platform()};
};

void waitUntilLooked(SampleStore& store) {
    QSignalSpy changed(&store, &SampleStore::changed);
    ASSERT_TRUE(changed.wait(patienceMilliseconds));
}

TEST(SampleStore, IsOfferedOnlyWhereThereIsNoMailAndAMaker) {
    struct Case {
        bool hasMail;
        std::vector<std::string> makers;
        bool offered;
    };

    for (const Case& test : {Case{false, {"/no/such/maker.py", realMaker()}, true},
                             Case{false, {"/no/such/maker.py"}, false}, Case{true, {realMaker()}, false}}) {
        Fixture fixture;
        if (test.hasMail) fixture.home.makeFolder("Library/Mail");
        SampleStore store(fixture.context, test.makers);
        waitUntilLooked(store);
        EXPECT_EQ(store.offered(), test.offered);
    }
}

TEST(SampleStore, MakesAHomeWithMail_AlsoAfterATryThatWasCutOff) {
    Fixture fixture;
    fixture.home.write(fixture.context.support.filePath("sample-home.new/Library/Mail/half")
                           .substr(fixture.home.path().size() + 1),
                       "half");
    SampleStore store(fixture.context, {realMaker()});
    waitUntilLooked(store);
    QSignalSpy ready(&store, &SampleStore::ready);
    store.make();
    EXPECT_TRUE(store.busy());
    ASSERT_TRUE(ready.wait(patienceMilliseconds)) << store.failure().toStdString();
    const std::string home = ready.first().first().toString().toStdString();
    EXPECT_TRUE(std::filesystem::exists(home + "/Library/Mail/V10/MailData/Envelope Index"));
    EXPECT_FALSE(std::filesystem::exists(home + ".new"));

    // A second time opens the same samples.
    const auto made = std::filesystem::last_write_time(home + "/Library/Mail");
    store.make();
    ASSERT_TRUE(ready.wait(patienceMilliseconds));
    EXPECT_EQ(std::filesystem::last_write_time(home + "/Library/Mail"), made);
}

TEST(SampleStore, TellsWhyItFailedAndMayBeTriedAgain) {
    Fixture fixture;
    const std::string broken = fixture.home.write("broken.py", "import sys; sys.exit('没有空间')\n");
    SampleStore store(fixture.context, {broken});
    waitUntilLooked(store);
    QSignalSpy ready(&store, &SampleStore::ready);
    for (int round = 0; round < 2; ++round) {
        store.make();
        QSignalSpy changed(&store, &SampleStore::changed);
        ASSERT_TRUE(changed.wait(patienceMilliseconds));
        EXPECT_TRUE(store.failure().contains(QStringLiteral("没有空间"))) << store.failure().toStdString();
        EXPECT_FALSE(store.busy());
        EXPECT_TRUE(store.offered());
    }
    EXPECT_EQ(ready.count(), 0);
    EXPECT_FALSE(std::filesystem::exists(fixture.context.support.filePath("sample-home")));
}

} // namespace

} // namespace corvane
