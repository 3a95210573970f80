// How far each year is archived: columns, or one bar of all years where the window is low.
import QtQuick
import QtQuick.Layouts
import Corvane

FocusScope {
    id: section

    required property HomeScreen home
    readonly property var figures: home.figures
    property bool narrow: false
    property bool low: false
    property bool tall: false

    implicitHeight: low ? 22 : 26 + columns.implicitHeight

    RowLayout {
        id: head
        width: parent.width
        height: 22
        spacing: 12

        AppText {
            text: "各年邮件"
            role: AppText.Heading
            Accessible.role: Accessible.Heading
        }
        AppText {
            Layout.fillWidth: true
            visible: !section.low
            opacity: section.narrow ? 0 : 1
            text: section.figures.scopeYear !== 0 ? "再点一次或按 Esc 恢复全部"
                : section.figures.isNarrowed ? "点按年份可只看这一年；按 Esc 恢复全部邮箱" : "点按年份可只看这一年；蓝色年份已有勾选"
            role: AppText.Note
            color: Theme.text3
        }
        ShareBar {
            objectName: "yearShare"
            Layout.fillWidth: true
            Layout.leftMargin: 8
            Layout.rightMargin: 4
            visible: section.low
            thickness: 10
            parts: section.figures.sums
        }
        ChartLegend {
            entries: section.figures.sums
        }
    }
    YearChart {
        id: columns
        objectName: "yearChart"
        anchors.top: head.bottom
        anchors.topMargin: 4
        width: parent.width
        visible: !section.low
        implicitHeight: section.tall ? 220 : 140
        years: section.figures.years
        chosenYear: section.figures.scopeYear
        onYearChosen: year => section.home.setScopeYear(year)
        onYearCleared: section.home.clearScope()
    }
}
