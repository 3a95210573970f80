// That several files hold the open message, and what that means for archiving.
import QtQuick
import Corvane

Rectangle {
    id: note

    property string title: ""
    property string places: ""
    // Only the title.
    property bool compact: false

    implicitHeight: lines.height + (compact ? 18 : 26)
    radius: Theme.radiusLarge
    color: Theme.page
    border.color: Theme.line

    Symbol {
        x: 17
        y: lines.y + (Theme.bodyLine - height) / 2
        size: 18
        name: "copy"
        color: Theme.text2
    }
    Column {
        id: lines
        anchors.verticalCenter: parent.verticalCenter
        x: 46
        width: parent.width - x - 17

        AppText {
            width: parent.width
            text: note.title
            font.weight: Theme.medium
        }
        AppText {
            width: parent.width
            visible: !note.compact && text.length > 0
            text: note.places
            color: Theme.text2
            wrapMode: Text.Wrap
            maximumLineCount: 2
        }
        AppText {
            width: parent.width
            visible: !note.compact
            text: "归档时逐个比对：相同只存一份，不同全部保留。"
            color: Theme.text2
            wrapMode: Text.Wrap
            maximumLineCount: 2
        }
    }
}
