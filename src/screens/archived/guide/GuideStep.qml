// One numbered step of the guide, with a line to the next one.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Corvane

RowLayout {
    id: step

    property int number: 1
    property string title: ""
    property var lines: []
    property bool isDone: false
    // Its turn has come.
    property bool isOpen: true
    property bool isLast: false
    default property alias content: column.data

    spacing: 16
    Accessible.role: Accessible.ListItem
    Accessible.name: number + "，" + title + "，" + lines.join("，")

    ColumnLayout {
        Layout.fillHeight: true
        Layout.alignment: Qt.AlignTop
        spacing: 4

        Rectangle {
            implicitWidth: 24
            implicitHeight: 24
            radius: 12
            color: step.isDone ? Theme.safeBackground : step.isOpen ? Theme.accentFill : "transparent"
            border.color: step.isDone ? Theme.safeLine : step.isOpen ? Theme.accentFill : Theme.lineStrong

            Symbol {
                anchors.centerIn: parent
                visible: step.isDone
                size: 14
                name: "check"
                color: Theme.safe
            }
            AppText {
                anchors.centerIn: parent
                visible: !step.isDone
                text: step.number
                role: AppText.Note
                font.weight: Theme.strong
                color: step.isOpen ? Theme.textOnAccent : Theme.text2
                Accessible.ignored: true
            }
        }
        Line {
            Layout.alignment: Qt.AlignHCenter
            Layout.fillHeight: true
            Layout.bottomMargin: 4
            visible: !step.isLast
            color: Theme.lineStrong
        }
    }
    ColumnLayout {
        id: column
        Layout.fillWidth: true
        Layout.alignment: Qt.AlignTop
        Layout.bottomMargin: step.isLast ? 0 : 12
        spacing: 0

        AppText {
            Layout.fillWidth: true
            Layout.preferredHeight: 24
            text: step.title
            font.weight: Theme.medium
            color: step.isOpen ? Theme.text1 : Theme.text2
            Accessible.ignored: true
        }
        AppText {
            Layout.fillWidth: true
            visible: text.length > 0
            text: step.lines.join("\n")
            wrapMode: Text.Wrap
            color: Theme.text2
            Accessible.ignored: true
        }
    }
}
