// Messages by year as stacked columns, from below: archived, not archived, on the server only.
//
// Each of `years` has `year`, `archived`, `unarchived`, `serverOnly` (numbers) and `ticked`. `chosenYear` is the year
// that the rest of the screen is narrowed to, 0 for none. A press on a column asks by `yearChosen`, a second one or
// Escape by `yearCleared`; the owner changes `chosenYear`. Left and Right go from column to column.
pragma ComponentBehavior: Bound

import QtQuick
import Corvane

FocusScope {
    id: chart

    property var years: []
    property int chosenYear: 0
    property int currentIndex: -1
    readonly property var noYear: ({ year: 0, archived: 0, unarchived: 0, serverOnly: 0, ticked: false })
    readonly property int axisWidth: 48
    readonly property int labelHeight: 24
    readonly property real plotHeight: height - labelHeight - 4
    readonly property real maximum: years.reduce((most, year) => Math.max(most, total(year)), 0)
    readonly property real step: ChartMath.axisStep(maximum)
    // Not by `step`, which follows a change of `maximum` later: between the two there would be thousands.
    readonly property int lines: maximum > 0 ? Math.floor(maximum / ChartMath.axisStep(maximum)) + 1 : 1

    signal yearChosen(int year)
    signal yearCleared

    function total(year: var): real {
        return year.archived + year.unarchived + year.serverOnly;
    }
    function grouped(value: real): string {
        return value.toLocaleString(Qt.locale("zh_CN"), "f", 0);
    }
    function rowsOf(year: var): var {
        return [
            { series: "archived", label: "已归档", text: grouped(year.archived) },
            { series: "unarchived", label: "未归档", text: grouped(year.unarchived) },
            { series: "serverOnly", label: "仅在服务器", text: grouped(year.serverOnly) }
        ];
    }
    function press(year: int) {
        if (year === chosenYear)
            yearCleared();
        else
            yearChosen(year);
    }
    function moveTo(index: int) {
        if (years.length > 0)
            currentIndex = Math.max(0, Math.min(years.length - 1, index));
    }

    implicitWidth: 600
    implicitHeight: 148
    activeFocusOnTab: years.length > 0
    Accessible.role: Accessible.Chart
    Accessible.name: "各年邮件"
    Accessible.focusable: true

    onActiveFocusChanged: {
        if (activeFocus && currentIndex < 0)
            moveTo(0);
    }
    Keys.onLeftPressed: moveTo(currentIndex - 1)
    Keys.onRightPressed: moveTo(currentIndex + 1)
    Keys.onPressed: event => {
        if (event.key === Qt.Key_Home) {
            moveTo(0);
        } else if (event.key === Qt.Key_End) {
            moveTo(years.length - 1);
        } else if ((event.key === Qt.Key_Return || event.key === Qt.Key_Enter || event.key === Qt.Key_Space)
                   && currentIndex >= 0) {
            press(years[currentIndex].year);
        } else if (event.key === Qt.Key_Escape && chosenYear !== 0) {
            yearCleared();
        } else {
            return;
        }
        event.accepted = true;
    }

    Repeater {
        objectName: "gridLines"
        model: chart.lines
        delegate: Item {
            id: gridLine
            required property int index
            readonly property real value: index * chart.step
            y: Math.round(4 + chart.plotHeight * (1 - (chart.maximum > 0 ? value / chart.maximum : 0)))
            width: chart.width

            Rectangle {
                x: chart.axisWidth
                width: parent.width - x
                height: Theme.hairline
                color: Theme.line
            }
            AppText {
                width: chart.axisWidth - 8
                y: -height / 2
                text: chart.grouped(gridLine.value)
                role: AppText.Note
                color: Theme.text3
                horizontalAlignment: Text.AlignRight
            }
        }
    }
    Row {
        id: columns
        x: chart.axisWidth
        height: chart.height

        Repeater {
            model: chart.years.length
            delegate: YearColumn {
                required property int index
                // A column outlives its year for a moment when there are fewer.
                readonly property var entry: chart.years[index] ?? chart.noYear

                width: (chart.width - chart.axisWidth) / chart.years.length
                height: columns.height
                year: entry.year
                figures: chart.rowsOf(entry)
                values: [entry.archived, entry.unarchived, entry.serverOnly]
                ticked: entry.ticked
                chosen: chart.chosenYear === entry.year
                current: chart.activeFocus && chart.currentIndex === index && KeyboardFocus.inUse
                plotHeight: chart.plotHeight
                stackHeight: chart.maximum > 0 ? chart.plotHeight * chart.total(entry) / chart.maximum : 0
                readOutLeft: index >= chart.years.length / 2
                onPressed: {
                    chart.currentIndex = index;
                    chart.press(entry.year);
                }
            }
        }
    }
}
