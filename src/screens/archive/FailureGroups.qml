// Failures by reason. Each of `groups` has a `count`, a `reason`, its `subjects`, and what is to be said of those that
// aren't listed in `more`.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Corvane

Rectangle {
    id: box

    property var groups: []

    implicitHeight: column.implicitHeight + 2
    radius: Theme.radiusLarge
    color: Theme.surface
    border.color: Theme.line

    Column {
        id: column
        x: 1
        y: 1
        width: parent.width - 2

        Repeater {
            model: box.groups
            delegate: Item {
                id: group
                required property int index
                required property var modelData
                width: column.width
                implicitHeight: rows.implicitHeight + 20

                Rectangle {
                    visible: group.index > 0
                    width: parent.width
                    height: Theme.hairline
                    color: Theme.line
                }
                CountPill {
                    id: pill
                    x: 15
                    y: 11
                    kind: "danger"
                    text: group.modelData.count
                }
                ColumnLayout {
                    id: rows
                    x: Math.max(47, pill.x + pill.width + 12)
                    y: 10
                    width: parent.width - x - 15
                    spacing: 0

                    AppText {
                        Layout.fillWidth: true
                        Layout.bottomMargin: 4
                        Layout.maximumWidth: Theme.bodyMeasure
                        text: group.modelData.reason
                        wrapMode: Text.Wrap
                    }
                    Repeater {
                        model: group.modelData.subjects
                        delegate: AppText {
                            required property string modelData
                            Layout.fillWidth: true
                            Layout.preferredHeight: 24
                            text: modelData
                            color: Theme.text2
                        }
                    }
                    AppText {
                        Layout.fillWidth: true
                        visible: text.length > 0
                        text: group.modelData.more
                        role: AppText.Note
                        color: Theme.text3
                    }
                }
            }
        }
    }
}
