#include "screens/space/space_screen.h"

#include "screens/support/screens_fixture.h"

namespace corvane {
namespace {

using testing::ScreensTest;

class Space : public ScreensTest {
  protected:
    SpaceScreen space_{model_, archiveScreen_, desktop_};
};

TEST_F(Space, TickedSendersGoIntoTheSheetOfTheArchive) {
    EXPECT_EQ(space_.state(), SpaceScreen::NoMail);
    EXPECT_TRUE(space_.sidebarFigure().isEmpty());
    publish({{"a", 2019}, {"b", 2020}});
    settle();
    EXPECT_FALSE(space_.totalSize().isEmpty())
        << "the sidebar shows it before anybody has looked at the screen";
    EXPECT_EQ(space_.sidebarFigure(), space_.totalSize());
    space_.open();
    settle();
    ASSERT_EQ(space_.state(), SpaceScreen::Listed);
    EXPECT_EQ(space_.totalCount(), QStringLiteral("2 封"));
    ASSERT_TRUE(space_.chosen().isThere);
    ASSERT_GT(space_.senders()->count(), 0);
    EXPECT_FALSE(space_.canBackUp());
    space_.setAllTicks(true);
    EXPECT_EQ(space_.chosen().tickState, 1);
    EXPECT_TRUE(space_.chosen().tickedLine.startsWith(QStringLiteral("2 封")))
        << space_.chosen().tickedLine.toStdString();

    space_.closeAccount();
    EXPECT_FALSE(space_.chosen().isThere);
    EXPECT_FALSE(space_.canBackUp());
    space_.openAccount(0);
    EXPECT_EQ(space_.chosen().tickState, 1) << "ticks are kept";
    space_.backUp();
    settle();
    EXPECT_EQ(archiveScreen_.stage(), ArchiveScreen::Confirm);
    EXPECT_EQ(archiveScreen_.candidates()->rowCount(), 2);
}

} // namespace
} // namespace corvane
