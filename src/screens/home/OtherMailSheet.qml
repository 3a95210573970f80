// Chooses another user's folder, or a folder of Mail, whose mail is shown in place of what is open.
import QtQuick
import Corvane

Sheet {
    id: sheet

    required property OtherMail otherMail
    readonly property FolderPicker picker: otherMail.picker
    readonly property var choice: picker.choice

    objectName: "otherMailSheet"
    title: "选择 Mail 的位置"
    subtitle: "选一个个人文件夹，或一个 Mail 文件夹。邮件只会被读取，不会被改动。"
    wantedWidth: 720
    wantedHeight: 620
    scrolls: false
    primary: use
    note: choice.note
    noteLine: choice.noteLine
    noteLineElide: Text.ElideMiddle

    function ask() {
        picker.begin();
        open();
    }

    onOpened: browser.enterFolders()

    fillingItems: FolderBrowser {
        id: browser
        anchors.fill: parent
        picker: sheet.picker
        errorText: sheet.otherMail.errorText
        onPathTyped: path => sheet.picker.openTyped(path)
    }
    barItems: [
        AppButton {
            implicitHeight: Theme.controlHeightPrimary
            horizontalPadding: 20
            text: "取消"
            onClicked: sheet.close()
        },
        PrimaryButton {
            id: use
            objectName: "useMailButton"
            enabled: sheet.choice.canUse
            text: "打开这里的 Mail"
            onClicked: sheet.picker.use()
        }
    ]
}
