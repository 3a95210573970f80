// A tooltip. `shown` opens it after the usual wait, and not before the pointer has moved: what comes under a resting one
// explains nothing.
import QtQuick
import QtQuick.Templates as T
import Corvane

T.ToolTip {
    id: tip

    property bool shown: false
    property bool pointed: false
    // Somebody acts: it would stand in the way, until the pointer has been elsewhere.
    property bool dismissed: false

    visible: shown && pointed && !dismissed
    onShownChanged: {
        pointed = shown && KeyboardFocus.pointerMovedLately();
        if (!shown)
            dismissed = false;
    }
    delay: Theme.tooltipDelay
    y: parent ? parent.height + Theme.half : 0
    x: 0
    margins: Theme.space
    horizontalPadding: 12
    verticalPadding: 8
    implicitWidth: Math.min(Theme.noteMeasure, content.implicitWidth + leftPadding + rightPadding)
    implicitHeight: content.implicitHeight + topPadding + bottomPadding
    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutsideParent | T.Popup.CloseOnReleaseOutsideParent

    Connections {
        target: KeyboardFocus
        function onPressed() {
            tip.dismissed = tip.shown;
        }
        function onPointerMoved() {
            tip.pointed = tip.shown;
        }
    }
    contentItem: Text {
        id: content
        text: tip.text
        textFormat: Text.PlainText
        wrapMode: Text.Wrap
        maximumLineCount: 12
        elide: Text.ElideRight
        color: Theme.text1
        font.pixelSize: Theme.noteSize
        lineHeightMode: Text.FixedHeight
        lineHeight: Theme.noteLine
    }
    background: Rectangle {
        color: Theme.sheet
        border.color: Theme.lineStrong
        radius: Theme.radiusSmall
    }
}
