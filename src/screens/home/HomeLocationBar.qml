// Where the mail goes, with what there is to say about that place; what is ticked, and the way into the run.
import QtQuick
import QtQuick.Layouts
import Corvane

BottomBar {
    id: bar

    required property HomeScreen home
    required property ArchiveScreen archive
    property bool narrow: false
    // Nothing is listed yet: there is only a place to choose.
    property bool choosesOnly: false
    readonly property var destination: home.destination
    readonly property var selection: home.selection
    readonly property var remark: destination.locationBarRemark
    readonly property string refusal: archive.place.quickDestinations.refusal
    readonly property color remarkColor: Theme.toneText(refusal.length > 0 ? "danger" : remark.kind)
    readonly property string remarkText: refusal.length > 0 ? "位置没有改。" + refusal
        : remark.title.length > 0 ? remark.title + "。" + remark.text : remark.text

    objectName: "locationBar"
    implicitHeight: Math.max(Theme.bottomBarHeight, place.implicitHeight + 22)

    RowLayout {
        anchors.fill: parent
        spacing: bar.narrow ? 16 : 24

        RowLayout {
            id: place
            Layout.fillWidth: true
            spacing: 12

            Symbol {
                Layout.alignment: bar.remarkText.length > 0 ? Qt.AlignTop : Qt.AlignVCenter
                Layout.topMargin: bar.remarkText.length > 0 ? 2 : 0
                size: 20
                name: bar.destination.isChosen ? bar.destination.symbol : "externaldrive"
                color: bar.refusal.length > 0 || bar.remark.kind.length > 0 ? bar.remarkColor : Theme.text2
            }
            ColumnLayout {
                Layout.fillWidth: true
                spacing: 0

                RowLayout {
                    Layout.fillWidth: true
                    spacing: 8

                    AppText {
                        objectName: "locationName"
                        text: bar.destination.isChosen ? bar.destination.destinationName : "先选择归档位置"
                        font.weight: Theme.medium
                    }
                    AppText {
                        Layout.maximumWidth: implicitWidth + 1
                        Layout.fillWidth: true
                        visible: bar.destination.isChosen
                        text: bar.destination.destinationPath
                        elide: Text.ElideMiddle
                        color: Theme.text3
                    }
                    PlainButton {
                        objectName: "changeLocationButton"
                        visible: bar.destination.isChosen
                        implicitHeight: Theme.bodyLine
                        text: "更改…"
                        onClicked: chooser.ask()
                    }
                    Item {
                        Layout.fillWidth: true
                    }
                }
                AppText {
                    Layout.fillWidth: true
                    visible: !bar.destination.isChosen
                    text: "云盘 / U 盘 / 外置硬盘"
                    role: AppText.Note
                    color: Theme.text2
                }
                AppText {
                    objectName: "locationRemark"
                    Layout.fillWidth: true
                    Layout.maximumWidth: Theme.noteMeasure
                    visible: text.length > 0
                    text: bar.remarkText
                    role: AppText.Note
                    wrapMode: Text.Wrap
                    maximumLineCount: 3
                    color: bar.remarkColor
                }
            }
        }
        ColumnLayout {
            visible: !bar.choosesOnly && bar.home.state === HomeScreen.List
            spacing: 0

            AppText {
                objectName: "selectionTitle"
                Layout.alignment: Qt.AlignRight
                text: bar.narrow ? bar.selection.line : bar.selection.title
                font.weight: Theme.strong
            }
            AppText {
                Layout.alignment: Qt.AlignRight
                visible: !bar.narrow
                text: bar.selection.organizeSelectionSummary
                role: AppText.Note
                color: Theme.text2
            }
        }
        // Where nothing is listed, an update is what one came for.
        AppButton {
            objectName: "chooseLocationFirstButton"
            visible: !bar.destination.isChosen && bar.choosesOnly
            implicitHeight: Theme.controlHeightPrimary
            horizontalPadding: 20
            text: "选择位置…"
            onClicked: chooser.ask()
        }
        PrimaryButton {
            objectName: "chooseLocationButton"
            visible: !bar.destination.isChosen && !bar.choosesOnly
            text: "选择位置…"
            onClicked: chooser.ask()
        }
        PrimaryButton {
            objectName: "primaryAction"
            visible: !bar.choosesOnly && bar.destination.isChosen
            enabled: !bar.selection.organizePrimaryDisabled
            text: bar.selection.organizePrimaryTitle
            onClicked: bar.home.runOrganizePrimaryAction()
        }
    }
    FolderChooser {
        id: chooser
        picker: bar.archive.place.folderPicker
        folder: bar.archive.place.destination.folder
        onFolderChosen: folder => bar.archive.place.quickDestinations.chooseFolder(folder)
    }
}
