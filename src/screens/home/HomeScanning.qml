// A scan runs. Its end isn't known, so it has a count and no percentage.
import QtQuick
import QtQuick.Layouts
import Corvane

CentredPane {
    id: pane

    required property HomeScreen home

    objectName: "scanning"
    columnWidth: 560

    ColumnLayout {
        Layout.fillWidth: true
        spacing: 4

        AppText {
            Layout.fillWidth: true
            text: "正在扫描 Mail…"
            role: AppText.Title
            Accessible.role: Accessible.Heading
        }
        AppText {
            Layout.fillWidth: true
            text: "读取邮箱，确认哪些邮件需要放入归档库"
            color: Theme.text2
        }
    }
    ColumnLayout {
        Layout.fillWidth: true
        spacing: 10

        ProgressTrack {
            Layout.fillWidth: true
            indeterminate: true
            name: "正在扫描 Mail"
        }
        RowLayout {
            Layout.fillWidth: true
            spacing: 16

            AppText {
                objectName: "scanLine"
                Layout.fillWidth: true
                text: pane.home.scan.line
                role: AppText.Heading
                wrapMode: Text.Wrap
                maximumLineCount: 2
            }
            AppText {
                Layout.alignment: Qt.AlignBaseline
                text: "已用时 " + pane.home.scan.elapsed
                color: Theme.text2
            }
        }
    }
    ScanAccounts {
        Layout.fillWidth: true
        visible: entries.length > 0
        entries: pane.home.scan.accounts
    }
    RowLayout {
        Layout.fillWidth: true
        spacing: 16

        AppText {
            Layout.fillWidth: true
            text: "扫描期间无需操作，完成后会在这里列出可归档的邮件"
            color: Theme.text2
        }
        AppButton {
            objectName: "cancelScanButton"
            focus: true
            text: "取消扫描"
            onClicked: pane.home.access.cancelScan()
        }
    }
}
