// A button: a label, an icon or both. Its colours are properties, which the other buttons set. Return presses it
// like Space.
import QtQuick
import QtQuick.Templates as T
import Corvane

T.Button {
    id: button

    property string symbol: ""
    property int symbolSize: 16
    // Says more than the label; shown as a tooltip.
    property string help: ""
    readonly property string explanation: hovered ? help : ""
    property bool showHovered: hovered
    property bool showFocus: activeFocus && KeyboardFocus.inUse
    property color fill: down ? Theme.pressed : showHovered ? Theme.controlHover : Theme.control
    property color edge: Theme.lineStrong
    property color labelColor: Theme.text1
    property color symbolColor: Theme.text2
    property color disabledFill: Theme.inset
    property color disabledEdge: Theme.line
    property int labelRole: AppText.Body
    property int labelWeight: Theme.regular
    property bool underlined: false

    implicitWidth: content.implicitWidth + leftPadding + rightPadding
    implicitHeight: Theme.controlHeight
    horizontalPadding: 12
    focusPolicy: Qt.TabFocus
    hoverEnabled: true
    Accessible.name: text.length > 0 ? text : help
    Accessible.description: help
    onExplanationChanged: ToolTips.explain(button, explanation)
    onPressed: if (!KeyboardFocus.inUse) OpenSheets.notePress(button)

    // A key that is held down would go on through the sheets that the first press opens, up to their "取消".
    Keys.onReturnPressed: event => pressByKey(event)
    Keys.onEnterPressed: event => pressByKey(event)

    function pressByKey(event: var) {
        if (!event.isAutoRepeat)
            clicked();
    }

    contentItem: Item {
        id: content
        implicitWidth: icon.width + label.gap + label.implicitWidth

        Symbol {
            id: icon
            anchors.verticalCenter: parent.verticalCenter
            x: (parent.width - (width + label.gap + label.width)) / 2
            // Not by visibility, which a popup takes from its items while it is closed.
            width: button.symbol.length > 0 ? button.symbolSize : 0
            visible: width > 0
            height: button.symbolSize
            size: button.symbolSize
            name: button.symbol
            color: button.enabled ? button.symbolColor : Theme.disabled
        }
        AppText {
            id: label
            readonly property int gap: icon.width > 0 && text.length > 0 ? 6 : 0
            anchors.verticalCenter: parent.verticalCenter
            x: icon.x + icon.width + gap
            width: Math.min(implicitWidth, parent.width - icon.width - gap)
            text: button.text
            role: button.labelRole
            color: button.enabled ? button.labelColor : Theme.disabled
            font.weight: button.labelWeight
            font.underline: button.underlined
            Accessible.ignored: true
        }
    }
    background: Rectangle {
        color: button.enabled ? button.fill : button.disabledFill
        border.color: button.enabled ? button.edge : button.disabledEdge
        radius: Theme.radiusSmall

        Behavior on color {
            ColorAnimation {
                duration: Theme.colourDuration
            }
        }
        FocusRing {
            shown: button.showFocus
        }
    }
}
