// One of a few choices, all in view. It says what was chosen by `activated` and leaves `currentIndex` to its owner.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Corvane

T.Control {
    id: control

    property var options: []
    property int currentIndex: 0
    property string name: ""
    property int segmentPadding: 12
    property bool showFocus: activeFocus && KeyboardFocus.inUse

    signal activated(int index)

    function choose(index: int) {
        if (index !== currentIndex && index >= 0 && index < options.length)
            activated(index);
    }

    implicitWidth: segments.implicitWidth + 4
    implicitHeight: Theme.controlHeight
    padding: 2
    focusPolicy: Qt.TabFocus
    Accessible.role: Accessible.PageTabList
    Accessible.name: name
    Accessible.focusable: true

    Keys.onLeftPressed: choose(currentIndex - 1)
    Keys.onRightPressed: choose(currentIndex + 1)

    background: Rectangle {
        color: Theme.inset
        radius: Theme.radiusSmall

        FocusRing {
            shown: control.showFocus
        }
    }
    contentItem: Row {
        id: segments

        Repeater {
            model: control.options
            delegate: Item {
                id: segment
                required property int index
                required property string modelData
                readonly property bool chosen: index === control.currentIndex

                // The width of the heaviest form: choosing moves nothing.
                width: heaviest.implicitWidth + 2 * control.segmentPadding
                height: control.availableHeight
                Accessible.role: Accessible.PageTab
                Accessible.name: modelData
                Accessible.selectable: true
                Accessible.selected: chosen
                Accessible.onPressAction: control.choose(index)

                Rectangle {
                    anchors.fill: parent
                    radius: Theme.radiusSmall - 1
                    color: segment.chosen ? Theme.control : area.pressed ? Theme.pressed : "transparent"
                    border.color: segment.chosen ? Theme.lineStrong : "transparent"
                }
                AppText {
                    anchors.centerIn: parent
                    text: segment.modelData
                    font.weight: segment.chosen ? Theme.strong : Theme.regular
                    color: !control.enabled ? Theme.disabled
                        : segment.chosen || area.containsMouse ? Theme.text1 : Theme.text2
                    Accessible.ignored: true
                }
                Text {
                    id: heaviest
                    visible: false
                    text: segment.modelData
                    textFormat: Text.PlainText
                    font.pixelSize: Theme.bodySize
                    font.weight: Theme.strong
                }
                MouseArea {
                    id: area
                    anchors.fill: parent
                    hoverEnabled: true
                    onClicked: control.choose(segment.index)
                }
            }
        }
    }
}
