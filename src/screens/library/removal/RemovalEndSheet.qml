// What came of a removal of which something failed.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Corvane

Sheet {
    id: sheet

    required property RemovalQuestion removal
    readonly property bool wanted: removal.step === RemovalQuestion.Failed

    signal copyRequested
    signal folderRequested

    onWantedChanged: {
        if (wanted)
            open();
        else
            close();
    }
    onClosed: {
        if (wanted)
            removal.close();
    }

    objectName: "removalEndSheet"
    wantedWidth: 560
    symbol: "triangle-alert"
    symbolColor: Theme.attention
    title: wanted ? removal.title : ""
    subtitle: wanted ? removal.line : ""
    primary: done

    RowLayout {
        Layout.fillWidth: true
        spacing: Theme.section

        Repeater {
            model: sheet.removal.figures
            delegate: StatTile {
                required property int index
                required property var modelData
                Layout.fillWidth: true
                first: index === 0
                caption: modelData.label
                figure: modelData.count
                line: modelData.line
                kind: modelData.tone
            }
        }
    }
    RowLayout {
        Layout.fillWidth: true
        Layout.topMargin: Theme.section
        AppText {
            Layout.fillWidth: true
            text: sheet.removal.failedCount.toLocaleString(Qt.locale(), "f", 0) + " 封没有删掉"
            role: AppText.Heading
        }
        CopyButton {
            onClicked: sheet.copyRequested()
        }
    }
    RemovalItems {
        Layout.fillWidth: true
        Layout.topMargin: Theme.space
        failed: true
        items: sheet.removal.failures
        leftOut: sheet.removal.failedCount - sheet.removal.failures.length
    }
    barItems: [
        AppButton {
            implicitHeight: Theme.controlHeightPrimary
            horizontalPadding: 20
            symbol: "folder-open"
            text: "打开文件夹"
            onClicked: sheet.folderRequested()
        },
        PrimaryButton {
            id: done
            objectName: "removalDone"
            text: "完成"
            onClicked: sheet.removal.close()
        }
    ]
}
