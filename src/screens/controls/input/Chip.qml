// A state in a word: "safe", "attention", "danger", anything else neutral.
import QtQuick
import Corvane

Rectangle {
    id: chip

    property string text: ""
    property string symbol: ""
    property string kind: ""
    readonly property real textLeft: symbol.length > 0 ? 8 + 13 + Theme.half : 8
    readonly property color ink: kind === "" ? Theme.text2 : Theme.toneText(kind)

    implicitWidth: Math.ceil(textLeft + label.implicitWidth + 8)
    implicitHeight: Theme.chipHeight
    radius: Theme.radiusInner
    color: kind === "" ? Theme.surface : Theme.toneBackground(kind)
    border.color: kind === "" ? Theme.line : Theme.toneLine(kind)
    Accessible.role: Accessible.StaticText
    Accessible.name: text

    Symbol {
        anchors.verticalCenter: parent.verticalCenter
        x: 8
        visible: chip.symbol.length > 0
        size: 13
        name: chip.symbol
        color: chip.ink
    }
    AppText {
        id: label
        anchors.verticalCenter: parent.verticalCenter
        x: chip.textLeft
        width: chip.width - x - 8
        text: chip.text
        role: AppText.Note
        color: chip.ink
        Accessible.ignored: true
    }
}
