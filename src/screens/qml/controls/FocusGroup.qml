// A part of the window that Tab enters and leaves as a whole; arrows move inside of it.
import QtQuick
import Corvane

FocusScope {
    id: group

    // Arrows that move: Left and Right, Up and Down, or both.
    property bool horizontal: true
    property bool vertical: true

    function movesOn(key: int): bool {
        return (horizontal && key === Qt.Key_Right) || (vertical && key === Qt.Key_Down);
    }
    function movesBack(key: int): bool {
        return (horizontal && key === Qt.Key_Left) || (vertical && key === Qt.Key_Up);
    }

    Keys.onTabPressed: KeyboardFocus.leave(group, true)
    Keys.onBacktabPressed: KeyboardFocus.leave(group, false)
    Keys.onPressed: event => {
        if (movesOn(event.key))
            event.accepted = KeyboardFocus.step(group, true);
        else if (movesBack(event.key))
            event.accepted = KeyboardFocus.step(group, false);
    }
}
