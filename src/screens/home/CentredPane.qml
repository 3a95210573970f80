// A column in the middle of a screen; it scrolls where the window is too low for it.
import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Corvane

FocusGroup {
    id: pane

    property int columnWidth: 520
    property int columnSpacing: 24
    default property alias content: column.data

    focus: true

    Flickable {
        id: flick
        anchors.fill: parent
        contentHeight: Math.max(height, column.implicitHeight + 32)
        interactive: contentHeight > height
        boundsBehavior: Flickable.StopAtBounds
        clip: interactive
        T.ScrollBar.vertical: AppScrollBar {}

        ColumnLayout {
            id: column
            x: Math.round((flick.width - width) / 2)
            y: Math.round((flick.contentHeight - height) / 2)
            width: Math.min(pane.columnWidth, flick.width - 32)
            spacing: pane.columnSpacing
        }
    }
}
