#include <utility>

#include <QGuiApplication>
#include <QWindow>
#include <gtest/gtest.h>

#include "screens/controls/charts/chart_math.h"
#include "screens/shell/sidebar/sidebar_model.h"
#include "screens/shell/start/corvane_url.h"
#include "screens/shell/window_frame.h"
#include "support/temporary_home.h"

namespace corvane {

namespace {

TEST(ClampedFrame, KeepsWhatFitsAndMovesTheRestInside) {
    const QRect screen(100, 50, 1000, 700);
    const std::pair<QRect, QRect> cases[] = {
        {{100, 50, 1000, 700}, {100, 50, 1000, 700}}, // fills it exactly
        {{300, 100, 400, 300}, {300, 100, 400, 300}},
        {{0, 0, 400, 300}, {100, 50, 400, 300}},
        {{900, 600, 400, 300}, {700, 450, 400, 300}},
        {{5000, -900, 1240, 840}, {100, 50, 1000, 700}}, // from a display that has gone, and larger
        {{200, 60, 1240, 300}, {100, 60, 1000, 300}},
    };
    for (const auto& [frame, expected] : cases) EXPECT_EQ(clampedFrame(frame, screen), expected);
    EXPECT_EQ(clampedFrame(QRect(1, 2, 3, 4), QRect()), QRect(1, 2, 3, 4)) << "no screen to ask";
}

TEST(WindowFrame, ComesBackWhereItWas_AndIgnoresADamagedSetting) {
    const testing::TemporaryHome home;
    platform::SettingsStore settings(home.at("settings.json"));
    for (const char* stored : {"", "no numbers at all", "1 2", "10 10 -5 -5"}) {
        settings.setText("corvaneWindowFrame", stored);
        QWindow window;
        window.resize(500, 400);
        const WindowFrame frame(window, settings);
        EXPECT_EQ(window.size(), QSize(500, 400)) << stored;
    }
    const QRect place(20, 30, 320, 240);
    {
        QWindow window;
        window.setGeometry(place);
        WindowFrame frame(window, settings);
        window.setGeometry(place);
        frame.remember();
    }
    QWindow again;
    const WindowFrame frame(again, settings);
    EXPECT_EQ(again.geometry(), place);
}

TEST(CorvaneUrl, OpensOnlyWhatNamesAnAbsoluteFolder) {
    const std::pair<const char*, const char*> cases[] = {
        {"corvane://open?path=/a/b", "/a/b"},
        {"corvane://open?path=/a%20b/%E9%82%AE%E4%BB%B6", "/a b/邮件"},
        {"corvane://open?other=1&path=/first&path=/second", "/first"},
        {"CORVANE://open?path=/a", "/a"},
        {"corvane://open?path=/a+b", "/a+b"},
    };
    for (const auto& [address, expected] : cases)
        EXPECT_EQ(folderOfUrl(QString::fromUtf8(address)), QString::fromUtf8(expected)) << address;
    for (const char* refused : {"corvane://open?path=", "corvane://open?path=&path=/second",
                                "corvane://open?path=relative", "corvane://open?path=/a%00b",
                                "corvane://close?path=/a", "corvane://open", "file:///a?path=/a", "", "::::"})
        EXPECT_FALSE(folderOfUrl(QString::fromUtf8(refused))) << refused;
}

TEST(ChartMath, AxisHasAtMostFourRoundSteps) {
    const std::pair<double, double> cases[] = {{0, 1},       {1, 1},       {4, 1},       {5, 2},
                                               {8, 2},       {9, 5},       {20, 5},      {21, 10},
                                               {3540, 1000}, {4000, 1000}, {4001, 2000}, {999'999, 500'000}};
    for (const auto& [maximum, step] : cases) {
        EXPECT_EQ(ChartMath::axisStep(maximum), step) << maximum;
        EXPECT_LE(maximum / ChartMath::axisStep(maximum), 4) << maximum;
    }
}

TEST(ChartMath, PartsShowWhatIsThereAndFillTheLength) {
    struct Case {
        std::vector<double> values;
        double length;
    };

    for (const Case& test : {Case{{58, 30, 12}, 404}, Case{{1'000'000, 1, 1}, 100}, Case{{0, 5, 0}, 30},
                             Case{{1, 1'000'000, -3}, 50}}) {
        QVariantList values;
        for (const double value : test.values) values.append(value);
        const QVariantList parts = ChartMath::parts(values, test.length, 1);
        ASSERT_EQ(parts.size(), values.size());
        double sum = -1;
        for (qsizetype i = 0; i < parts.size(); ++i) {
            const double part = parts[i].toDouble();
            if (values[i].toDouble() > 0) {
                EXPECT_GE(part, 2);
                sum += part + 1;
            } else {
                EXPECT_EQ(part, 0);
            }
        }
        EXPECT_NEAR(sum, test.length, 1e-9);
    }
    EXPECT_EQ(ChartMath::parts({0, 0}, 100, 1), QVariantList({0.0, 0.0}));
    EXPECT_TRUE(ChartMath::parts({}, 100, 1).isEmpty());
}

TEST(SidebarModel, ShowsPlacesThatHaveAScreenUnderTheirOwnNumbers) {
    SidebarModel sidebar;
    for (int number = 0; number <= 6; ++number) {
        const QString key = sidebar.keyOfNumber(number);
        bool listed = false;
        for (int row = 0; row < sidebar.rowCount(); ++row)
            listed = listed || sidebar.index(row).data(SidebarModel::NumberRole) == number;
        EXPECT_EQ(listed, !key.isEmpty()) << number;
    }
    int changes = 0;
    QObject::connect(&sidebar, &SidebarModel::dataChanged, &sidebar, [&] { ++changes; });
    for (int i = 0; i < 100; ++i) sidebar.setFigure(SidebarPlace::home, QString::number(i));
    EXPECT_EQ(changes, 1) << "a running scan must not flicker";
    sidebar.setFigure(SidebarPlace::space, QStringLiteral("1"));
    EXPECT_EQ(sidebar.index(0).data(SidebarModel::FigureRole), QStringLiteral("0"));
}

} // namespace

} // namespace corvane

int main(int argc, char** argv) {
    const QGuiApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
