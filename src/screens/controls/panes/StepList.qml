// Numbered steps. Each of `steps` has a `title` and, where wanted, a `line` below it.
import QtQuick
import QtQuick.Layouts
import Corvane

ColumnLayout {
    id: list

    property var steps: []

    spacing: 16

    Repeater {
        model: list.steps
        delegate: RowLayout {
            id: step
            required property int index
            required property var modelData
            spacing: 12
            Accessible.role: Accessible.ListItem
            Accessible.name: (index + 1) + "，" + modelData.title + "，" + (modelData.line ?? "")

            Rectangle {
                Layout.alignment: Qt.AlignTop
                implicitWidth: 24
                implicitHeight: 24
                radius: 12
                color: "transparent"
                border.color: Theme.lineStrong

                AppText {
                    anchors.centerIn: parent
                    text: step.index + 1
                    role: AppText.Note
                    font.weight: Theme.strong
                    color: Theme.text2
                    Accessible.ignored: true
                }
            }
            ColumnLayout {
                Layout.fillWidth: true
                Layout.topMargin: 2
                spacing: 2

                AppText {
                    Layout.fillWidth: true
                    text: step.modelData.title
                    font.weight: Theme.medium
                    Accessible.ignored: true
                }
                AppText {
                    Layout.fillWidth: true
                    visible: text.length > 0
                    text: step.modelData.line ?? ""
                    wrapMode: Text.Wrap
                    verticalAlignment: Text.AlignTop
                    color: Theme.text2
                    Accessible.ignored: true
                }
            }
        }
    }
}
