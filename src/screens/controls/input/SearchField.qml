// A field to search with. Escape clears it, then leaves it by `leaving`; Down asks for the list by `listRequested`.
import QtQuick
import QtQuick.Templates as T
import Corvane

T.TextField {
    id: field

    // A search is under way; shown once it takes a while.
    property bool busy: false
    property bool showFocus: activeFocus
    property bool showHovered: hovered

    signal leaving
    signal listRequested

    implicitWidth: 320
    implicitHeight: Theme.controlHeight
    leftPadding: 32
    rightPadding: 30
    verticalAlignment: TextInput.AlignVCenter
    color: enabled ? Theme.text1 : Theme.disabled
    selectionColor: Theme.accentFill
    selectedTextColor: Theme.textOnAccent
    // The platform's own font for fields knows nothing of the window's families.
    font: Theme.fieldFont
    selectByMouse: true
    hoverEnabled: true
    maximumLength: 500
    Accessible.name: placeholderText
    Accessible.searchEdit: true

    Keys.onEscapePressed: {
        if (text.length > 0)
            clear();
        else
            leaving();
    }
    Keys.onDownPressed: listRequested()

    Timer {
        id: patience
        interval: 300
        running: field.busy
    }
    background: Rectangle {
        radius: Theme.radiusSmall
        color: field.enabled ? Theme.control : Theme.inset
        border.width: field.showFocus ? Theme.ring : Theme.hairline
        border.color: field.showFocus ? Theme.accent
            : !field.enabled ? Theme.line : Theme.lineStrong

        Symbol {
            id: magnifier
            readonly property bool waits: field.busy && !patience.running
            anchors.verticalCenter: parent.verticalCenter
            x: 9
            size: 16
            name: waits ? "loader-circle" : "search"
            color: field.text.length > 0 ? Theme.text1 : Theme.text3

            RotationAnimator on rotation {
                running: magnifier.waits && Theme.moves
                loops: Animation.Infinite
                from: 0
                to: 360
                duration: Theme.indeterminatePass
                onStopped: magnifier.rotation = 0
            }
        }
        AppText {
            anchors.verticalCenter: parent.verticalCenter
            x: field.leftPadding
            width: parent.width - x - 8
            visible: field.text.length === 0 && field.preeditText.length === 0
            text: field.placeholderText
            color: field.enabled ? Theme.text3 : Theme.disabled
            Accessible.ignored: true
        }
    }
    IconButton {
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        width: parent.height
        height: parent.height
        visible: field.text.length > 0 && field.enabled
        bare: true
        fill: "transparent"
        symbol: "x"
        symbolSize: 14
        symbolColor: showHovered ? Theme.text1 : Theme.text3
        help: "清除搜索"
        focusPolicy: Qt.NoFocus
        onClicked: {
            field.clear();
            field.forceActiveFocus(Qt.OtherFocusReason);
        }
    }
}
