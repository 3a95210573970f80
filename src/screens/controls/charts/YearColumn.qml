// One year of a YearChart: its stack, its label and its readout.
import QtQuick
import Corvane

Item {
    id: column

    property int year: 0
    // No mail comes from then: its date is wrong.
    readonly property bool ahead: year > new Date().getFullYear()
    readonly property string title: year + " 年" + (ahead ? " · 还没有到，日期有误" : "")
    // Archived, not archived, on the server only; `figures` are their rows in the readout.
    property var values: []
    property var figures: []
    property bool ticked: false
    property bool chosen: false
    property bool current: false
    // The highest stack, and this one.
    property real plotHeight: 0
    property real stackHeight: 0
    property bool readOutLeft: false
    readonly property int topGap: 4
    readonly property var series: ["archived", "unarchived", "serverOnly"]
    readonly property var lengths: ChartMath.parts(values, stackHeight, 1)
    // Every label where they fit, else every second, fifth, tenth year.
    readonly property int labelEvery: width >= 34 ? 1 : width >= 17 ? 2 : width >= 7 ? 5 : 10

    signal pressed

    // From the plot's floor to the lower edge of a part.
    function below(part: int): real {
        let sum = 0;
        for (let i = 0; i < part; ++i)
            sum += lengths[i] > 0 ? lengths[i] + 1 : 0;
        return sum;
    }

    objectName: "yearColumn" + year
    Accessible.role: Accessible.Button
    Accessible.name: title + "，" + figures.map(figure => figure.label + " " + figure.text + " 封").join("，")
    Accessible.onPressAction: pressed()

    Rectangle {
        width: parent.width
        height: column.topGap + column.plotHeight
        visible: column.chosen || area.containsMouse
        color: column.chosen ? Theme.accentBackground : Theme.hover
    }
    // A Loader of Qt 6.4 takes no bound components.
    // qmllint disable unqualified
    Repeater {
        model: column.series
        delegate: Rectangle {
            id: part
            required property int index
            required property string modelData
            readonly property real floor: column.topGap + column.plotHeight - column.below(index)
            readonly property real ceiling: Math.round(floor - column.lengths[index])

            x: Math.round((column.width - width) / 2)
            y: ceiling
            width: Math.min(30, Math.round(column.width * 0.58))
            height: Math.round(floor) - ceiling
            visible: column.lengths[index] > 0
            color: Theme.seriesFill(modelData)
            border.width: Theme.seriesHasLine(modelData) ? Theme.hairline : 0
            border.color: Theme.seriesLine(modelData)
        }
    }
    // Ticks of a year whose label has no room.
    Rectangle {
        y: column.topGap + column.plotHeight + 3
        anchors.horizontalCenter: parent.horizontalCenter
        visible: column.ticked && !label.visible
        width: Math.min(30, Math.round(column.width * 0.58))
        height: Theme.ring
        color: Theme.accent
    }
    AppText {
        id: label
        anchors.bottom: parent.bottom
        anchors.horizontalCenter: parent.horizontalCenter
        visible: column.year % column.labelEvery === 0
        text: column.year
        role: AppText.Note
        font.weight: column.ticked || column.chosen ? Theme.strong : Theme.regular
        color: column.ticked ? Theme.accent : column.chosen ? Theme.text1
            : column.ahead ? Theme.attention : Theme.text3
        Accessible.ignored: true
    }
    FocusRing {
        shown: column.current
        inside: true
    }
    MouseArea {
        id: area
        anchors.fill: parent
        hoverEnabled: true
        onClicked: column.pressed()
    }
    Loader {
        active: area.containsMouse || column.current
        sourceComponent: ReadOutPopup {
            parent: column
            title: column.title
            rows: column.figures
            // Beside the column, so that it never covers what it tells about.
            x: column.readOutLeft ? -width - 4 : column.width + 4
            y: 4
        }
    }
}
