// One account: what is left of it to archive, and how far it is.
import QtQuick
import Corvane

Item {
    id: row

    required property string title
    required property string line
    required property string size
    required property int archived
    required property int unarchived
    required property bool chosen
    property bool current: false
    property bool listFocused: false

    signal clicked

    implicitHeight: 67
    Accessible.role: Accessible.ListItem
    Accessible.name: title + "，" + line + "，" + size
    Accessible.selectable: true
    Accessible.selected: chosen
    Accessible.onPressAction: clicked()

    Rectangle {
        anchors.fill: parent
        radius: Theme.radiusSmall
        color: row.chosen ? Theme.selection : area.pressed ? Theme.pressed : area.containsMouse ? Theme.hover
            : Theme.surface
    }
    MouseArea {
        id: area
        anchors.fill: parent
        hoverEnabled: true
        onClicked: row.clicked()
    }
    Item {
        anchors.fill: parent
        anchors.leftMargin: 12
        anchors.rightMargin: 12

        AppText {
            y: 9
            width: parent.width
            text: row.title
            // Addresses end alike, and differ before that; accounts of one name differ at their ends.
            elide: row.title.indexOf(" ") < 0 ? Text.ElideRight : Text.ElideMiddle
            font.weight: row.chosen ? Theme.strong : Theme.regular
            Accessible.ignored: true
        }
        AppText {
            y: 30
            text: row.line
            role: AppText.Note
            color: Theme.text2
            Accessible.ignored: true
        }
        AppText {
            y: 30
            anchors.right: parent.right
            text: row.size
            role: AppText.Note
            color: Theme.text2
            Accessible.ignored: true
        }
        ShareBar {
            y: 52
            width: parent.width
            thickness: Theme.shareBarHeightSmall
            parts: [
                { series: "archived", label: "已归档", value: row.archived, text: row.archived.toLocaleString(Qt.locale("zh_CN"), "f", 0) },
                { series: "unarchived", label: "未归档", value: row.unarchived, text: row.unarchived.toLocaleString(Qt.locale("zh_CN"), "f", 0) }
            ]
            Accessible.ignored: true
        }
    }
    FocusRing {
        shown: row.current && row.listFocused && KeyboardFocus.inUse
        inside: true
    }
}
