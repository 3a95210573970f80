// A state in a word: "safe", "attention", "danger", anything else neutral.
import QtQuick
import Corvane

Rectangle {
    id: chip

    property string text: ""
    property string symbol: ""
    property string kind: ""
    readonly property color ink: kind === "" ? Theme.text2 : Theme.toneText(kind)

    implicitWidth: content.width + 16
    implicitHeight: Theme.chipHeight
    radius: Theme.radiusInner
    color: kind === "" ? Theme.surface : Theme.toneBackground(kind)
    border.color: kind === "" ? Theme.line : Theme.toneLine(kind)
    Accessible.role: Accessible.StaticText
    Accessible.name: text

    Row {
        id: content
        anchors.centerIn: parent
        spacing: Theme.half

        Symbol {
            anchors.verticalCenter: parent.verticalCenter
            visible: chip.symbol.length > 0
            size: 13
            name: chip.symbol
            color: chip.ink
        }
        AppText {
            text: chip.text
            role: AppText.Note
            color: chip.ink
            Accessible.ignored: true
        }
    }
}
