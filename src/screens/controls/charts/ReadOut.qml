// The figures of one point of a chart, in a small box. Each of `rows` has a `series`, a `label` and the `text` of its
// value.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Corvane

Rectangle {
    id: box

    property string title: ""
    property var rows: []

    implicitWidth: Math.max(128, content.implicitWidth + 26)
    implicitHeight: content.implicitHeight + 18
    color: Theme.sheet
    border.color: Theme.lineStrong
    radius: Theme.radiusLarge
    Accessible.role: Accessible.ToolTip
    Accessible.name: title + "，" + rows.map(row => row.label + " " + row.text).join("，")

    ColumnLayout {
        id: content
        anchors.fill: parent
        anchors.leftMargin: 13
        anchors.rightMargin: 13
        anchors.topMargin: 9
        anchors.bottomMargin: 9
        spacing: 0

        AppText {
            visible: text.length > 0
            text: box.title
            font.weight: Theme.strong
            Accessible.ignored: true
        }
        Repeater {
            model: box.rows.length
            delegate: RowLayout {
                id: row
                required property int index
                readonly property var entry: box.rows[index] ?? ({ series: "", label: "", text: "" })
                Layout.fillWidth: true
                spacing: 6

                Swatch {
                    series: row.entry.series
                }
                AppText {
                    text: row.entry.label
                    Accessible.ignored: true
                }
                AppText {
                    Layout.fillWidth: true
                    Layout.leftMargin: 8
                    text: row.entry.text
                    horizontalAlignment: Text.AlignRight
                    Accessible.ignored: true
                }
            }
        }
    }
}
