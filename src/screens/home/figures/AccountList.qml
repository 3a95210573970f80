// The accounts; the chosen one is what the tree and the figures show.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Corvane

FocusGroup {
    id: group

    required property HomeScreen home

    horizontal: false
    vertical: false

    AppText {
        id: title
        width: parent.width
        height: 32
        verticalAlignment: Text.AlignTop
        text: "邮箱"
        role: AppText.Heading
        Accessible.role: Accessible.Heading
    }
    ListView {
        id: list
        objectName: "accountList"
        anchors.top: title.bottom
        anchors.bottom: parent.bottom
        width: parent.width
        clip: contentHeight > height
        focus: true
        activeFocusOnTab: true
        boundsBehavior: Flickable.StopAtBounds
        model: group.home.accounts
        currentIndex: 0
        Accessible.role: Accessible.List
        Accessible.name: "邮箱"
        T.ScrollBar.vertical: AppScrollBar {}

        Keys.onReturnPressed: group.home.chooseAccount(currentIndex)
        Keys.onSpacePressed: group.home.chooseAccount(currentIndex)

        delegate: AccountShareRow {
            required property int index
            width: list.width
            current: ListView.isCurrentItem
            listFocused: list.activeFocus
            onChosenChanged: if (chosen) list.currentIndex = index
            Component.onCompleted: if (chosen) list.currentIndex = index
            onClicked: {
                list.currentIndex = index;
                list.forceActiveFocus(Qt.MouseFocusReason);
                group.home.chooseAccount(index);
            }
        }
    }
}
