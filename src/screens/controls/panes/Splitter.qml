// The line between two panes, with a grip to move it. It says where it is wanted by `moved` (the width of the pane
// at its left) and at the end of a drag by `settled`; a double click asks for the width it had by `restored`.
import QtQuick
import Corvane

Item {
    id: splitter

    property real paneWidth: 372
    property real minimum: 352
    property real maximum: 400

    signal moved(real width)
    signal settled(real width)
    signal restored

    implicitWidth: Theme.hairline
    Accessible.role: Accessible.Splitter
    Accessible.name: "调整列表宽度"

    Rectangle {
        anchors.fill: parent
        color: Theme.line
    }
    MouseArea {
        property real pressedAt: 0
        property real widthThen: 0
        anchors.horizontalCenter: parent.horizontalCenter
        width: 5
        height: parent.height
        cursorShape: Qt.SplitHCursor
        preventStealing: true
        onPressed: event => {
            pressedAt = mapToItem(null, event.x, 0).x;
            widthThen = splitter.paneWidth;
        }
        onPositionChanged: event => {
            const wanted = widthThen + mapToItem(null, event.x, 0).x - pressedAt;
            splitter.moved(Math.max(splitter.minimum, Math.min(splitter.maximum, wanted)));
        }
        onReleased: splitter.settled(splitter.paneWidth)
        onDoubleClicked: splitter.restored()
    }
}
