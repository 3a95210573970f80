// Where the archived mail lies, and what is worth doing next.
import QtQuick
import QtQuick.Layouts
import Corvane

ColumnLayout {
    id: part

    required property ArchiveScreen archive
    readonly property var result: archive.outcome.view
    readonly property bool wasCut: result.restTitle.length > 0

    spacing: 0

    Line {
        Layout.fillWidth: true
    }
    RowLayout {
        Layout.fillWidth: true
        Layout.topMargin: 9
        Layout.bottomMargin: 9
        spacing: 12

        Symbol {
            size: 18
            name: part.archive.place.destination.symbol
            color: Theme.text2
        }
        AppText {
            Layout.fillWidth: true
            text: part.archive.place.destination.place
            wholeText: part.archive.place.destination.fullPath
            elide: Text.ElideMiddle
        }
        AppButton {
            objectName: "openFolderButton"
            implicitHeight: Theme.controlHeightPane
            symbol: "folder-open"
            symbolSize: 14
            text: "打开文件夹"
            enabled: !part.archive.place.destination.isMissing
            onClicked: part.archive.place.openFolder()
        }
    }
    Line {
        Layout.fillWidth: true
    }
    AppText {
        Layout.topMargin: 14
        visible: part.result.nextStep.length > 0
        text: "接下来"
        font.weight: Theme.medium
    }
    RowLayout {
        Layout.fillWidth: true
        Layout.topMargin: 6
        visible: part.result.nextStep.length > 0
        spacing: 8

        Symbol {
            visible: !part.wasCut
            size: 16
            name: "shield-check"
            color: Theme.text2
        }
        AppText {
            Layout.fillWidth: true
            text: part.result.nextStep
        }
        PlainButton {
            objectName: "nextStepButton"
            visible: !part.wasCut
            implicitHeight: Theme.controlHeightPane
            text: "已归档概览"
            onClicked: part.archive.goTo("archived")
        }
    }
    RowLayout {
        Layout.fillWidth: true
        Layout.topMargin: 6
        visible: part.archive.partialText.length > 0
        spacing: 8

        Symbol {
            size: 16
            name: "cloud-download"
            color: Theme.text2
        }
        AppText {
            Layout.fillWidth: true
            text: part.archive.partialText
        }
        PlainButton {
            implicitHeight: Theme.controlHeightPane
            text: "怎样补全"
            onClicked: help.open()
        }
    }
    PartialMailHelp {
        id: help
    }
}
