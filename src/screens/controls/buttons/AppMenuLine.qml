// A line between groups of a menu's rows.
import QtQuick
import QtQuick.Templates as T
import Corvane

T.MenuSeparator {
    implicitWidth: 24
    implicitHeight: 9

    contentItem: Item {
        Rectangle {
            anchors.verticalCenter: parent.verticalCenter
            width: parent.width
            height: Theme.hairline
            color: Theme.line
        }
    }
}
