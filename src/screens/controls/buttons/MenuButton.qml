// One of several choices, shown as its value; the others in a popup. `activated` says which one was chosen.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Corvane

T.ComboBox {
    id: button

    property string symbol: ""
    property string name: ""
    property bool showHovered: hovered
    // Of the choices, as far down as anybody looks at first; known while they are shown.
    property real widestChoice: 0
    property bool showFocus: activeFocus && KeyboardFocus.inUse

    implicitWidth: leftPadding + label.implicitWidth + rightPadding
    implicitHeight: Theme.controlHeightPane
    leftPadding: symbol.length > 0 ? 28 : 10
    rightPadding: 28
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    Accessible.name: name.length > 0 ? name + "：" + displayText : displayText

    TextMetrics {
        id: metrics
        font: label.font
    }
    function measureChoices() {
        let widest = 0;
        for (let i = 0; i < Math.min(count, 200); ++i) {
            metrics.text = textAt(i);
            widest = Math.max(widest, metrics.advanceWidth);
        }
        widestChoice = Math.ceil(widest);
    }

    contentItem: Item {
        implicitWidth: label.implicitWidth

        AppText {
            id: label
            anchors.verticalCenter: parent.verticalCenter
            width: parent.width
            text: button.displayText
            color: button.enabled ? Theme.text1 : Theme.disabled
            Accessible.ignored: true
        }
    }
    indicator: Symbol {
        x: button.width - width - 8
        y: (button.height - height) / 2
        size: 14
        name: "chevron-down"
        color: button.enabled ? Theme.text3 : Theme.disabled
    }
    background: Rectangle {
        radius: Theme.radiusSmall
        color: !button.enabled ? Theme.inset : button.down ? Theme.pressed
            : button.showHovered ? Theme.controlHover : Theme.control
        border.color: button.enabled ? Theme.lineStrong : Theme.line

        Symbol {
            anchors.verticalCenter: parent.verticalCenter
            x: 10
            visible: button.symbol.length > 0
            size: 14
            name: button.symbol
            color: button.enabled ? Theme.text3 : Theme.disabled
        }
        FocusRing {
            shown: button.showFocus
        }
    }
    delegate: AppMenuRow {
        required property int index
        width: button.popup.availableWidth
        text: button.textAt(index)
        marked: button.currentIndex === index
        highlighted: button.highlightedIndex === index
    }
    popup: T.Popup {
        y: button.height + 2
        width: Math.max(button.width, 160, Math.min(button.widestChoice + 48, 360))
        height: Math.min(rows.contentHeight + 2 * verticalPadding, 360)
        verticalPadding: Theme.half
        margins: Theme.space
        onAboutToShow: button.measureChoices()

        contentItem: ListView {
            id: rows
            // A closed one has no rows: choices that change make them anew.
            model: button.popup.visible ? button.delegateModel : null
            currentIndex: button.highlightedIndex
            clip: contentHeight > height
            T.ScrollBar.vertical: AppScrollBar {}
        }
        background: Rectangle {
            color: Theme.sheet
            border.color: Theme.lineStrong
            radius: Theme.radiusSmall
        }
    }
}
