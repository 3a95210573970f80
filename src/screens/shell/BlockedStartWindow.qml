// A small window instead of the large one: why it can't open, and the ways out.
import QtQuick
import QtQuick.Layouts
import QtQuick.Window
import Corvane

Window {
    id: root

    required property BlockedStart start
    // Asked here so that it watches the keys from the first one on.
    readonly property bool keyboardInUse: KeyboardFocus.inUse

    title: "Corvane"
    width: 460
    height: column.implicitHeight + 2 * Theme.margin
    minimumWidth: width
    maximumWidth: width
    minimumHeight: height
    maximumHeight: height
    color: Theme.sheet

    FocusScope {
        objectName: "blockedStart"
        anchors.fill: parent
        focus: true
        Accessible.role: Accessible.AlertMessage
        Accessible.name: root.start.title + "，" + root.start.line
        Keys.onEscapePressed: root.close()

        ColumnLayout {
            id: column
            x: Theme.margin
            y: Theme.margin
            width: parent.width - 2 * Theme.margin
            spacing: 0

            RowLayout {
                Layout.fillWidth: true
                spacing: 12

                Symbol {
                    Layout.alignment: Qt.AlignTop
                    size: 24
                    name: "triangle-alert"
                    color: Theme.attention
                }
                AppText {
                    Layout.fillWidth: true
                    text: root.start.title
                    role: AppText.Title
                    wrapMode: Text.Wrap
                }
            }
            AppText {
                objectName: "blockedStartLine"
                Layout.fillWidth: true
                Layout.topMargin: 12
                text: root.start.line
                wrapMode: Text.Wrap
                color: Theme.text2
            }
            FocusGroup {
                Layout.fillWidth: true
                Layout.topMargin: 24
                focus: true
                implicitHeight: buttons.implicitHeight

                RowLayout {
                    id: buttons
                    anchors.right: parent.right
                    spacing: 12

                    AppButton {
                        objectName: "retryStartButton"
                        text: root.start.retrying ? "正在重试…" : "重试"
                        implicitHeight: Theme.controlHeightPrimary
                        horizontalPadding: 20
                        onClicked: root.start.retry()
                    }
                    PrimaryButton {
                        objectName: "leaveButton"
                        focus: true
                        text: "退出"
                        onClicked: root.close()
                    }
                }
            }
        }
    }
}
