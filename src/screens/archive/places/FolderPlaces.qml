// Where one begins: the user's own folder, cloud folders, external disks, the whole disk.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Corvane

ListView {
    id: list

    required property FolderPicker picker

    objectName: "folderPlaces"
    clip: true
    activeFocusOnTab: true
    boundsBehavior: Flickable.StopAtBounds
    model: picker.places
    currentIndex: 0
    highlightMoveDuration: 0
    topMargin: 8
    bottomMargin: 8
    Accessible.role: Accessible.List
    Accessible.name: "常用位置"
    T.ScrollBar.vertical: AppScrollBar {}

    Keys.onReturnPressed: picker.openPlace(currentIndex)
    Keys.onEnterPressed: picker.openPlace(currentIndex)
    Keys.onSpacePressed: picker.openPlace(currentIndex)

    delegate: ListRow {
        id: row

        required property int index
        required property var modelData
        readonly property bool hasDetail: modelData.detail.length > 0

        objectName: "place" + index
        width: ListView.view.width
        implicitHeight: hasDetail ? Theme.rowRegular - 4 : Theme.rowDense
        restColor: Theme.page
        selected: modelData.chosen
        current: ListView.isCurrentItem
        listFocused: list.activeFocus
        Accessible.role: Accessible.ListItem
        Accessible.name: hasDetail ? modelData.name + "，" + modelData.detail : modelData.name
        Accessible.selected: selected
        Accessible.onPressAction: list.picker.openPlace(index)
        onClicked: {
            list.currentIndex = index;
            list.picker.openPlace(index);
        }

        Symbol {
            x: 16
            anchors.verticalCenter: parent.verticalCenter
            size: 16
            name: row.modelData.symbol
            color: Theme.text2
        }
        Column {
            x: 42
            width: row.width - x - 12
            anchors.verticalCenter: parent.verticalCenter

            AppText {
                width: parent.width
                text: row.modelData.name
                Accessible.ignored: true
            }
            AppText {
                width: parent.width
                visible: row.hasDetail
                text: row.modelData.detail
                role: AppText.Note
                elide: Text.ElideMiddle
                color: row.captionColor
                Accessible.ignored: true
            }
        }
    }
}
