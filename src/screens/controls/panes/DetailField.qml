// A header of the open message: its name and its value. A value that doesn't fit can be opened to all its lines.
import QtQuick
import Corvane

Item {
    id: field

    property string name: ""
    property string value: ""
    property bool open: false

    // Another message begins with one line again.
    onValueChanged: open = false

    visible: value.length > 0
    implicitHeight: valueLabel.height
    Accessible.role: Accessible.StaticText
    Accessible.name: name + "，" + value

    AppText {
        width: 52
        height: Theme.bodyLine
        text: field.name
        color: Theme.text3
        Accessible.ignored: true
    }
    AppText {
        id: valueLabel
        x: 52
        width: parent.width - x - (more.visible ? more.width + Theme.half : 0)
        text: field.value
        wrapMode: field.open ? Text.Wrap : Text.NoWrap
        maximumLineCount: field.open ? 60 : 1
        Accessible.ignored: true
    }
    IconButton {
        id: more
        anchors.right: parent.right
        y: (Theme.bodyLine - height) / 2
        implicitHeight: Theme.bodyLine
        visible: valueLabel.implicitWidth > field.width - valueLabel.x
        bare: true
        symbol: field.open ? "chevron-up" : "chevron-down"
        symbolSize: 14
        help: field.open ? "收起" + field.name : "显示完整的" + field.name
        onClicked: field.open = !field.open
    }
}
