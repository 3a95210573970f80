// One filter of the library: all, or one of those that have mail within the other filters.
import QtQuick
import Corvane

MenuButton {
    id: menu

    property bool narrow: false
    property int chosen: 0

    implicitWidth: Math.min(narrow ? 128 : 180, leftPadding + contentItem.implicitWidth + rightPadding)
    implicitHeight: Theme.controlHeight
    currentIndex: chosen
    // Another list of choices begins at its first.
    onModelChanged: currentIndex = Qt.binding(() => menu.chosen)
}
