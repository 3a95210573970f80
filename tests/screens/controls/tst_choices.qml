// Controls that show what their owner knows and only ask for a change.
import QtQuick
import QtTest
import Corvane

Item {
    id: page
    width: 700
    height: 400

    SegmentedControl { id: segments; options: ["全部", "未归档", "已归档"] }
    TickBox { id: box; x: 50; y: 60 }
    YearChart {
        id: chart
        y: 100
        width: 600
        years: [{ year: 2019, archived: 4000, unarchived: 1, serverOnly: 0, ticked: false },
            { year: 2020, archived: 0, unarchived: 900, serverOnly: 20, ticked: true },
            { year: 2021, archived: 10, unarchived: 10, serverOnly: 10, ticked: false }]
    }
    SignalSpy { id: chosen; target: segments; signalName: "activated" }
    SignalSpy { id: ticked; target: box; signalName: "clicked" }
    SignalSpy { id: yearChosen; target: chart; signalName: "yearChosen" }
    SignalSpy { id: gridLines; signalName: "itemAdded" }
    SignalSpy { id: yearCleared; target: chart; signalName: "yearCleared" }

    TestCase {
        name: "Choices"
        when: windowShown

        function init() {
            segments.currentIndex = 0;
            chart.chosenYear = 0;
            for (const spy of [chosen, ticked, yearChosen, yearCleared])
                spy.clear();
        }

        function test_SegmentsAskAndStopAtTheirEnds() {
            segments.forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Left);
            compare(chosen.count, 0);
            keyClick(Qt.Key_Right);
            compare(chosen.signalArguments[0][0], 1);
            compare(segments.currentIndex, 0);
            segments.currentIndex = 2;
            keyClick(Qt.Key_Right);
            compare(chosen.count, 1);
            mouseClick(segments, 20, 15);
            compare(chosen.signalArguments[1][0], 0);
        }

        function test_AChartThatGrowsAThousandfoldNeverHasMoreLinesThanItsAxis() {
            gridLines.target = findChild(chart, "gridLines");
            const small = [{ year: 2019, archived: 2, unarchived: 1, serverOnly: 0, ticked: false }];
            const large = [{ year: 2019, archived: 90000, unarchived: 1, serverOnly: 0, ticked: false }];
            const drawn = chart.years;
            for (const years of [small, large, [], large, small])
                chart.years = years;
            chart.years = drawn;
            verify(gridLines.count > 0);
            verify(gridLines.count < 60, gridLines.count + " lines");
        }

        function test_TickBoxTakesThePointerAroundIt_AndKeepsItsState() {
            mouseClick(page, box.x - 5, box.y + 8);
            mouseClick(page, box.x + 21, box.y + 8);
            mouseClick(page, box.x - 8, box.y + 8);
            compare(ticked.count, 2);
            compare(box.tick, 0);
        }

        function test_ChartColumnNarrows_AndASecondPressOrEscapeGivesAllBack() {
            const column = findChild(chart, "yearColumn2020");
            mouseClick(column);
            compare(yearChosen.signalArguments[0][0], 2020);
            chart.chosenYear = 2020;
            mouseClick(column);
            compare(yearCleared.count, 1);
            chart.forceActiveFocus();
            keyClick(Qt.Key_Escape);
            compare(yearCleared.count, 2);
            keyClick(Qt.Key_End);
            keyClick(Qt.Key_Right);
            keyClick(Qt.Key_Return);
            compare(yearChosen.signalArguments[1][0], 2021);
        }

        function test_ChartShowsSmallPartsAndNamesItsColumns() {
            const column = findChild(chart, "yearColumn2019");
            compare(column.lengths[1], 2);
            compare(column.lengths[2], 0);
            compare(column.Accessible.name, "2019 年，已归档 4,000 封，未归档 1 封，仅在服务器 0 封");
        }
    }
}
