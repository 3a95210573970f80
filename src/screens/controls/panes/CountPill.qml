// A small count on a pill.
import QtQuick
import Corvane

Rectangle {
    id: pill

    property string text: ""
    property string kind: ""

    implicitWidth: Math.max(20, label.implicitWidth + 10)
    implicitHeight: Theme.pillHeight
    radius: height / 2
    color: kind === "" ? Theme.inset : Theme.toneBackground(kind)
    Accessible.role: Accessible.StaticText
    Accessible.name: text

    AppText {
        id: label
        anchors.centerIn: parent
        text: pill.text
        role: AppText.Note
        font.weight: Theme.medium
        color: pill.kind === "" ? Theme.text2 : Theme.toneText(pill.kind)
        Accessible.ignored: true
    }
}
