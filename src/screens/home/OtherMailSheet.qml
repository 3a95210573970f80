// Chooses another user's folder, or a folder of Mail, whose mail is shown in place of what is open.
import QtQuick
import QtQuick.Layouts
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

    onOpened: folders.forceActiveFocus(Qt.OtherFocusReason)

    fillingItems: ColumnLayout {
        anchors.fill: parent
        spacing: 12

        RowLayout {
            Layout.fillWidth: true
            spacing: 8

            IconButton {
                symbol: "chevron-up"
                help: "上一级文件夹"
                enabled: sheet.picker.canGoUp
                onClicked: sheet.picker.goUp()
            }
            AppTextField {
                id: path
                objectName: "otherMailPath"
                Layout.fillWidth: true
                name: "文件夹的路径"
                placeholderText: "输入文件夹的路径"
                Keys.onReturnPressed: sheet.picker.openTyped(text)
                Keys.onEnterPressed: sheet.picker.openTyped(text)
                Keys.onDownPressed: folders.forceActiveFocus(Qt.TabFocusReason)
            }
        }
        AppText {
            Layout.fillWidth: true
            visible: text.length > 0
            text: sheet.picker.errorText.length > 0 ? sheet.picker.errorText : sheet.otherMail.errorText
            color: Theme.danger
            Accessible.role: Accessible.AlertMessage
        }
        Rectangle {
            Layout.fillWidth: true
            Layout.fillHeight: true
            radius: Theme.radiusLarge
            color: Theme.surface
            border.color: Theme.line

            FolderPlaces {
                id: places
                x: 1
                y: 1
                width: 184
                height: parent.height - 2
                picker: sheet.picker
            }
            Rectangle {
                x: places.width
                width: Theme.hairline
                height: parent.height
                color: Theme.line
            }
            FolderList {
                id: folders
                x: places.width + 1
                y: Theme.half
                width: parent.width - x - 1
                height: parent.height - 2 * y
                picker: sheet.picker
            }
        }
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

    Connections {
        target: sheet.picker
        function onListed() {
            path.text = sheet.picker.pathText;
        }
    }
}
