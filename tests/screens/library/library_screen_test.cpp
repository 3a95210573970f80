#include "screens/library/library_screen.h"

#include <QSignalSpy>
#include <QTest>

#include "locations/archive_samples.h"
#include "model/model_test.h"
#include "screens/support/mail_samples.h"
#include "screens/support/recording_desktop.h"

namespace corvane::testing {
namespace {

using State = LibraryScreen::State;
using Step = RemovalQuestion::Step;

class LibraryScreenTest : public ModelTest {
  protected:
    // Newest first: c, a thread of b and a, d of another year.
    LibraryScreenTest() {
        EmailArchiveIndex index = sampleIndex(1, {"mid:a", "mid:b", "mid:c", "mid:d"});
        for (std::size_t at = 0; at < 3; ++at) index.records[at].date = dateIn(2021) + std::chrono::hours(at);
        index.records[1].referencedMessageIdentifiers = {SharedText("a")};
        index.records[3].date = dateIn(2015);
        root_ = writeArchive(home_, "Archive", index);
        model_.library().loader.loadEmailArchiveIndex(root_, true);
        settle();
        screen_.appear();
        settle();
    }

    void settle() {
        waitUntilIdle(context_.tasks);
        QCoreApplication::processEvents();
        waitUntilIdle(context_.tasks);
    }

    [[nodiscard]] QStringList rows() {
        QStringList all;
        LibraryRowModel& list = *screen_.list();
        for (int row = 0; row < list.rowCount(); ++row) {
            const auto value = [&](int role) { return list.data(list.index(row), role); };
            all += value(LibraryRowModel::KindRole).toString().first(1) +
                   QString::fromStdString(list.entryAt(row)->record.id.str()).last(1) +
                   (value(LibraryRowModel::SelectedRole).toBool() ? QStringLiteral("*") : QString());
        }
        return all;
    }

    std::string root_;
    ModelContext context_{platform_};
    CorvaneViewModel model_{context_};
    RecordingDesktop desktop_;
    LibraryScreen screen_{model_, desktop_};
};

TEST_F(LibraryScreenTest, ThreadsOpenInPlace_AndRangesFollowTheMailNotTheRows) {
    EXPECT_EQ(screen_.state(), State::Listed);
    EXPECT_EQ(rows(), texts({"sc*", "tb", "sd"}));
    QSignalSpy resets(screen_.list(), &QAbstractItemModel::modelReset);
    screen_.openThread(1);
    EXPECT_EQ(rows(), texts({"sc*", "tb", "mb", "ma", "sd"}));
    screen_.selection()->select(0);
    screen_.selection()->extendTo(4);
    EXPECT_EQ(screen_.selection()->count(), 4);
    screen_.selection()->toggle(3);
    EXPECT_EQ(rows(), texts({"sc*", "tb", "mb*", "ma", "sd*"}));
    screen_.closeThread(3);
    EXPECT_EQ(screen_.selection()->currentRow(), 1) << "from a member to its thread";
    screen_.closeThread(1);
    EXPECT_EQ(rows(), texts({"sc", "tb*", "sd"}));
    EXPECT_EQ(resets.count(), 0);
}

TEST_F(LibraryScreenTest, AYearNarrowsTheList_AndTheStripStaysWhole) {
    ASSERT_EQ(screen_.filters()->years().size(), 7) << "2015 to 2021 without gaps";
    screen_.filters()->chooseYears(2015, 2015);
    settle();
    EXPECT_EQ(rows().size(), 1);
    EXPECT_EQ(screen_.filters()->years().size(), 7);
    EXPECT_EQ(screen_.filters()->spanText(), QStringLiteral("2015 年"));
    screen_.filters()->chooseYears(2015, 2015);
    settle();
    EXPECT_EQ(rows().size(), 3) << "the same again gives all back";
    screen_.search()->setQuery(QStringLiteral("不在任何邮件里"));
    QTRY_COMPARE(screen_.state(), State::NoMatch);
}

TEST_F(LibraryScreenTest, WhatMayBeTheOnlyCopyNeedsASecondAct_AndTheNextRowIsSelected) {
    screen_.selection()->select(0);
    screen_.actions()->removeSelected();
    settle();
    RemovalQuestion& question = *screen_.removal();
    EXPECT_EQ(question.step(), Step::Asking);
    EXPECT_FALSE(question.canAccept()) << "nobody has looked whether it is still in Mail";
    question.accept();
    settle();
    EXPECT_EQ(rows().size(), 3);
    question.onlyCopy()->setTicked(true);
    question.accept();
    EXPECT_EQ(question.step(), Step::Removing);
    question.close();
    EXPECT_EQ(question.step(), Step::Removing) << "what has begun is told to its end";
    QTRY_COMPARE(rows().size(), 2);
    settle();
    EXPECT_EQ(question.step(), Step::Closed);
    EXPECT_EQ(rows(), texts({"tb*", "sd"}));
    EXPECT_EQ(screen_.mail()->entry()->record.id, "mid:b");
}

} // namespace
} // namespace corvane::testing
