// Base of a row: its background, its edge, its ring and the pointer. The keyboard is the list's, not the row's.
// Content goes above the pointer's area, so that boxes and tooltips in it work.
import QtQuick
import Corvane

Item {
    id: row

    property bool selected: false
    // The row that the keyboard is at.
    property bool current: false
    // Its list has the focus in an active window.
    property bool listFocused: false
    property bool showHovered: area.containsMouse
    property bool separated: false
    // Opaque: a row that lets its ground through leaves pieces of the rows that stood there before it, where the window is
    // painted by software.
    property color restColor: Theme.surface
    readonly property alias down: area.pressed
    // Dates and captions step up in a selected row.
    readonly property color captionColor: selected ? Theme.text2 : Theme.text3
    default property alias content: holder.data

    signal pressed(int modifiers, int button)
    signal clicked(int modifiers)
    signal doubleClicked
    signal menuRequested(real x, real y)

    implicitHeight: Theme.rowDense
    // The keyboard stays with the list: only so is it said which row the arrows have come to.
    Accessible.focusable: true
    Accessible.focused: current && listFocused

    Rectangle {
        anchors.fill: parent
        color: row.selected ? (row.listFocused ? Theme.selection : Theme.selectionInactive)
            : area.pressed ? Theme.pressed : row.showHovered ? Theme.hover : row.restColor
    }
    Rectangle {
        visible: row.selected && row.listFocused
        width: Theme.selectionEdge
        height: parent.height
        color: Theme.accentFill
    }
    Rectangle {
        visible: row.separated
        anchors.bottom: parent.bottom
        width: parent.width
        height: Theme.hairline
        // Also between two rows that are selected.
        color: row.selected ? Theme.lineStrong : Theme.line
    }
    MouseArea {
        id: area
        anchors.fill: parent
        hoverEnabled: true
        acceptedButtons: Qt.LeftButton | Qt.RightButton
        onPressed: event => {
            row.pressed(event.modifiers, event.button);
            if (event.button === Qt.RightButton)
                row.menuRequested(event.x, event.y);
        }
        onClicked: event => {
            if (event.button === Qt.LeftButton)
                row.clicked(event.modifiers);
        }
        onDoubleClicked: row.doubleClicked()
    }
    Item {
        id: holder
        anchors.fill: parent
    }
    FocusRing {
        shown: row.current && !row.selected && row.listFocused && KeyboardFocus.inUse
        inside: true
        cornerRadius: Theme.radiusInner
    }
}
