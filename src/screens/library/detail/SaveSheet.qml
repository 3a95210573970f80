// Into which folder attachments go. Nothing that is there is written over.
import QtQuick
import QtQuick.Layouts
import Corvane

ConfirmSheet {
    id: sheet

    required property AttachmentTiles attachments
    property int row: -1

    function ask(which: int) {
        row = which;
        if (folder.text.length === 0)
            folder.text = attachments.defaultFolder;
        open();
    }

    objectName: "saveSheet"
    title: row < 0 && attachments.count > 1 ? "存储 " + attachments.count + " 个附件" : "存储附件"
    line: "已有的文件不会被覆盖，同名的附件会加上编号。"
    acceptText: "存储"
    onAccepted: {
        if (folder.text.trim().length > 0)
            attachments.save(row, folder.text.trim());
    }

    AppTextField {
        id: folder
        objectName: "saveFolder"
        Layout.fillWidth: true
        name: "文件夹"
        placeholderText: "文件夹的完整路径"
    }
}
