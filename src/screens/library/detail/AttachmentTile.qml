// One attachment: what it is and how it stands with it. A double click or Return opens it, never a single press.
import QtQuick
import QtQuick.Templates as T
import Corvane

T.AbstractButton {
    id: tile

    required property int index
    required property string name
    required property string symbol
    required property string statusText
    required property bool failed
    required property var picture
    required property string fileText

    signal openRequested
    signal menuRequested

    implicitHeight: 62
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    Accessible.role: Accessible.Button
    Accessible.name: name + "，" + statusText
    Accessible.description: "双击打开附件"
    Accessible.onPressAction: openRequested()
    Keys.onReturnPressed: event => {
        if (!event.isAutoRepeat)
            openRequested();
    }
    Keys.onPressed: event => {
        event.accepted = event.key === Qt.Key_Menu || (event.key === Qt.Key_F10 && event.modifiers & Qt.ShiftModifier);
        if (event.accepted)
            menuRequested();
    }
    onDoubleClicked: openRequested()

    contentItem: Item {
        Rectangle {
            id: box
            anchors.verticalCenter: parent.verticalCenter
            x: 11
            width: 44
            height: 44
            radius: Theme.radiusInner
            color: Theme.page
            border.color: Theme.line
            TilePicture {
                id: small
                anchors.fill: parent
                anchors.margins: Theme.hairline
                image: tile.picture
                radius: Theme.radiusInner - 1
            }
            Symbol {
                anchors.centerIn: parent
                visible: !small.filled
                size: 24
                name: tile.symbol
                color: Theme.text2
            }
        }
        AppText {
            x: 66
            y: 11
            width: parent.width - x - 12
            text: tile.name
            elide: Text.ElideMiddle
            Accessible.ignored: true
        }
        AppText {
            x: 66
            y: 31
            width: parent.width - x - 12
            text: tile.statusText
            role: AppText.Note
            color: tile.failed ? Theme.danger : Theme.text3
            Accessible.ignored: true
        }
    }
    background: Rectangle {
        radius: Theme.radiusLarge
        color: tile.down ? Theme.pressed : tile.hovered ? Theme.hover : Theme.surface
        border.color: tile.hovered ? Theme.lineStrong : Theme.line
        FocusRing {
            shown: tile.activeFocus && KeyboardFocus.inUse
            cornerRadius: Theme.radiusLarge
        }
    }
    // Out of the window, as a copy of the file.
    DragHandler {
        id: drag
        enabled: tile.fileText.length > 0
        target: null
        dragThreshold: 8
    }
    Drag.dragType: Drag.Automatic
    Drag.supportedActions: Qt.CopyAction
    Drag.mimeData: ({ "text/uri-list": tile.fileText })
    Drag.active: drag.active

    TapHandler {
        acceptedButtons: Qt.RightButton
        onTapped: tile.menuRequested()
    }
}
