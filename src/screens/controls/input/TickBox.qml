// A box with three states. It says that it was pressed by `clicked` and leaves its state to its owner: 0 empty, 1
// ticked, 2 dash (some of what stands below it). `name` is what is ticked.
import QtQuick
import QtQuick.Templates as T
import Corvane

T.CheckBox {
    id: box

    property int tick: 0
    property string name: ""
    property bool showHovered: hovered
    property bool showFocus: activeFocus && KeyboardFocus.inUse

    implicitWidth: Theme.tickBoxSize
    implicitHeight: Theme.tickBoxSize
    // The template tells a screen reader its role and whether it is ticked: what is attached here is overruled by it.
    tristate: true
    checkState: tick === 1 ? Qt.Checked : tick === 2 ? Qt.PartiallyChecked : Qt.Unchecked
    nextCheckState: () => checkState
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    // The box is small, what takes the pointer isn't.
    containmentMask: Item {
        x: (box.width - width) / 2
        y: (box.height - height) / 2
        width: Theme.minimumTarget
        height: Theme.minimumTarget
    }
    Accessible.name: name
    Accessible.checkStateMixed: tick === 2
    Accessible.onToggleAction: clicked()

    background: Rectangle {
        radius: Theme.radiusInner
        color: !box.enabled ? Theme.inset
            : box.tick === 0 ? (box.down ? Theme.pressed : box.showHovered ? Theme.controlHover : Theme.control)
            : box.down ? Theme.accentFillPressed : box.showHovered ? Theme.accentFillHover : Theme.accentFill
        border.color: !box.enabled ? Theme.line : box.tick === 0 ? Theme.controlLine : color

        Symbol {
            anchors.centerIn: parent
            visible: box.tick !== 0
            size: 12
            stroke: 3.2
            name: box.tick === 2 ? "minus" : "check"
            color: box.enabled ? Theme.textOnAccent : Theme.disabled
        }
        FocusRing {
            shown: box.showFocus
            cornerRadius: Theme.radiusInner
        }
    }
}
