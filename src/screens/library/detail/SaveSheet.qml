// Into which folder attachments go, and under which name a single one. Nothing that is there is written over.
import QtQuick
import QtQuick.Layouts
import Corvane

ConfirmSheet {
    id: sheet

    required property AttachmentTiles attachments
    // -1 for all.
    property int row: -1
    readonly property bool one: row >= 0

    function ask(which: int) {
        row = attachments.count === 1 ? 0 : which;
        if (folder.text.length === 0)
            folder.text = attachments.defaultFolder;
        fileName.text = attachments.fileName(row);
        open();
    }

    objectName: "saveSheet"
    title: one ? "存储附件" : "存储 " + (attachments.count + attachments.leftOut) + " 个附件"
    line: one ? "已有的文件不会被覆盖。" : "已有的文件不会被覆盖，同名的附件会加上编号。"
    acceptText: "存储"
    onAccepted: {
        const place = folder.text.trim();
        if (place.length > 0 && sheet.one)
            attachments.save(row, place, fileName.text);
        else if (place.length > 0)
            attachments.saveAll(place);
    }

    AppText {
        visible: sheet.one
        text: "名称"
        role: AppText.Note
        color: Theme.text3
    }
    AppTextField {
        id: fileName
        objectName: "saveName"
        Layout.fillWidth: true
        visible: sheet.one
        name: "名称"
    }
    AppText {
        text: "文件夹"
        role: AppText.Note
        color: Theme.text3
    }
    AppTextField {
        id: folder
        objectName: "saveFolder"
        Layout.fillWidth: true
        name: "文件夹"
        placeholderText: "文件夹的完整路径"
    }
}
