// The folders in the shown folder. A row that is selected would be the archive's place; Return, Right or a double click
// go into it, Left and Backspace go up, letters find a name.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Corvane

ListView {
    id: list

    required property FolderPicker picker
    property string typed: ""
    // Above the list, as another row of it: the folder that would be made here.
    readonly property string proposal: picker.choice.proposal
    // It stays while another row is selected, and until the next folder is listed.
    property string kept: ""
    onProposalChanged: if (proposal.length > 0) kept = proposal
    readonly property real proposedHeight: proposed.visible ? proposed.height : 0
    onCurrentIndexChanged: picker.select(currentIndex)
    readonly property bool isFocused: activeFocus && Window.active

    signal emptyPressed

    objectName: "folderList"
    clip: true
    activeFocusOnTab: true
    keyNavigationEnabled: false
    reuseItems: true
    boundsBehavior: Flickable.StopAtBounds
    model: picker
    currentIndex: -1
    highlightMoveDuration: 0
    Accessible.role: Accessible.List
    Accessible.name: "文件夹"
    T.ScrollBar.vertical: AppScrollBar {}

    function moveTo(row: int) {
        if (count === 0)
            return;
        currentIndex = Math.max(0, Math.min(count - 1, row));
        positionViewAtIndex(currentIndex, ListView.Contain);
    }
    function pageRows(): int {
        return Math.max(1, Math.floor(height / Theme.rowDense) - 1);
    }
    function find(letters: string) {
        typed += letters;
        forget.restart();
        const row = picker.rowStartingWith(typed, typed.length > letters.length ? currentIndex : currentIndex + 1);
        if (row >= 0)
            moveTo(row);
    }

    // From the first row back to the shown folder itself.
    Keys.onUpPressed: currentIndex <= 0 ? currentIndex = -1 : moveTo(currentIndex - 1)
    Keys.onDownPressed: moveTo(currentIndex + 1)
    Keys.onRightPressed: picker.openRow(currentIndex)
    Keys.onLeftPressed: picker.goUp()
    Keys.onPressed: event => {
        if (event.key === Qt.Key_Home)
            moveTo(0);
        else if (event.key === Qt.Key_End)
            moveTo(count - 1);
        else if (event.key === Qt.Key_PageUp)
            moveTo(currentIndex - pageRows());
        else if (event.key === Qt.Key_PageDown)
            moveTo(currentIndex + pageRows());
        else if (event.key === Qt.Key_Backspace)
            picker.goUp();
        else if (event.key === Qt.Key_Return || event.key === Qt.Key_Enter) {
            // Without a row the sheet takes the key; one that is held down must not go that far.
            if (currentIndex < 0 && !event.isAutoRepeat)
                return;
            picker.openRow(currentIndex);
        } else if (event.text.length > 0 && event.text >= " " && !(event.modifiers & (Qt.ControlModifier | Qt.AltModifier)))
            find(event.text);
        else
            return;
        event.accepted = true;
    }

    delegate: ListRow {
        id: row

        required property int index
        required property string name
        required property string inside

        objectName: "folder" + index
        width: ListView.view.width
        selected: ListView.isCurrentItem
        current: ListView.isCurrentItem
        listFocused: list.isFocused
        Accessible.role: Accessible.ListItem
        Accessible.name: name
        Accessible.selected: selected
        Accessible.onPressAction: list.picker.openRow(index)
        onClicked: {
            list.currentIndex = index;
            list.forceActiveFocus(Qt.MouseFocusReason);
        }
        onDoubleClicked: list.picker.openRow(index)

        Symbol {
            x: 12
            anchors.verticalCenter: parent.verticalCenter
            size: 16
            name: "folder"
            color: Theme.text3
        }
        AppText {
            x: 38
            width: insideLabel.x - x - 12
            anchors.verticalCenter: parent.verticalCenter
            text: row.name
            elide: Text.ElideMiddle
            Accessible.ignored: true
        }
        AppText {
            id: insideLabel
            anchors.right: parent.right
            anchors.rightMargin: 16
            anchors.verticalCenter: parent.verticalCenter
            text: row.inside
            role: AppText.Note
            color: row.captionColor
            Accessible.ignored: true
        }
    }

    ListRow {
        id: proposed
        objectName: "proposedFolder"
        parent: list.parent
        x: list.x
        y: list.y - height
        width: list.width
        visible: list.kept.length > 0
        selected: list.currentIndex < 0
        listFocused: list.isFocused
        Accessible.role: Accessible.ListItem
        Accessible.name: list.kept + "，将新建"
        Accessible.selected: selected
        onClicked: {
            list.currentIndex = -1;
            list.forceActiveFocus(Qt.MouseFocusReason);
        }

        Symbol {
            x: 12
            anchors.verticalCenter: parent.verticalCenter
            size: 16
            name: "folder"
            color: Theme.accent
        }
        AppText {
            x: 38
            anchors.verticalCenter: parent.verticalCenter
            text: list.kept
            font.weight: Theme.strong
            Accessible.ignored: true
        }
        AppText {
            anchors.right: parent.right
            anchors.rightMargin: 16
            anchors.verticalCenter: parent.verticalCenter
            text: "将新建"
            role: AppText.Note
            color: Theme.text2
            Accessible.ignored: true
        }
    }

    // Where no row says that the keyboard is here.
    FocusRing {
        parent: list
        shown: list.isFocused && list.currentIndex < 0 && list.kept.length === 0 && KeyboardFocus.inUse
        inside: true
    }
    // Below the rows: what is pressed there selects nothing.
    TapHandler {
        onTapped: eventPoint => {
            if (list.indexAt(eventPoint.position.x, eventPoint.position.y + list.contentY) < 0)
                list.currentIndex = -1;
        }
    }
    AppText {
        objectName: "noFolders"
        anchors.centerIn: parent
        visible: list.count === 0
        text: list.picker.busy ? "正在读取…" : "这里没有文件夹"
        color: Theme.text3
    }
    Timer {
        id: forget
        interval: 800
        onTriggered: list.typed = ""
    }
    Connections {
        target: list.picker
        function onListed() {
            list.kept = "";
            list.currentIndex = list.picker.firstRow();
            // Also where it was that row before, of another folder.
            list.picker.select(list.currentIndex);
            list.typed = "";
            if (list.currentIndex < 0)
                list.positionViewAtBeginning();
            else
                list.positionViewAtIndex(list.currentIndex, ListView.Contain);
        }
    }
}
