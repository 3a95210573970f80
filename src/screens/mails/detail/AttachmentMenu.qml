// What can be done with one attachment.
import QtQuick
import Corvane

AppMenu {
    id: menu

    required property AttachmentActions actions
    property int row: -1

    function openFor(attachment: int, item: Item) {
        row = attachment;
        popup(item, 0, item.height + Theme.half);
    }

    objectName: "attachmentMenu"

    AppMenuRow {
        text: "打开"
        keys: "↩"
        onTriggered: menu.actions.open(menu.row)
    }
    AppMenuRow {
        objectName: "saveAttachmentRow"
        text: "存到「下载」"
        onTriggered: menu.actions.save(menu.row)
    }
    AppMenuLine {}
    AppMenuRow {
        text: "在文件管理器中显示"
        onTriggered: menu.actions.reveal(menu.row)
    }
}
