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
    readonly property var remark: home.locationRemark
    readonly property color remarkColor: Theme.toneText(remark.kind)

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
                Layout.alignment: bar.remark.text.length > 0 ? Qt.AlignTop : Qt.AlignVCenter
                Layout.topMargin: bar.remark.text.length > 0 ? 2 : 0
                size: 20
                name: bar.home.hasDestination ? bar.home.destinationSymbol : "externaldrive"
                color: bar.remark.kind.length > 0 ? bar.remarkColor : Theme.text2
            }
            ColumnLayout {
                Layout.fillWidth: true
                spacing: 0

                RowLayout {
                    Layout.fillWidth: true
                    spacing: 8

                    AppText {
                        objectName: "locationName"
                        text: bar.home.hasDestination ? bar.home.destinationName : "先选择归档位置"
                        font.weight: Theme.medium
                    }
                    AppText {
                        Layout.maximumWidth: implicitWidth + 1
                        Layout.fillWidth: true
                        visible: bar.home.hasDestination
                        text: bar.home.destinationPath
                        elide: Text.ElideMiddle
                        color: Theme.text3
                    }
                    PlainButton {
                        objectName: "changeLocationButton"
                        visible: bar.home.hasDestination
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
                    visible: !bar.home.hasDestination
                    text: "云盘 / U 盘 / 外置硬盘"
                    role: AppText.Note
                    color: Theme.text2
                }
                AppText {
                    objectName: "locationRemark"
                    Layout.fillWidth: true
                    Layout.maximumWidth: Theme.noteMeasure
                    visible: text.length > 0
                    text: bar.remark.title.length > 0 ? bar.remark.title + "。" + bar.remark.text : bar.remark.text
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
                text: bar.narrow ? bar.home.selectionLine : bar.home.selectionTitle
                font.weight: Theme.strong
            }
            AppText {
                Layout.alignment: Qt.AlignRight
                visible: !bar.narrow
                text: bar.home.organizeSelectionSummary
                role: AppText.Note
                color: Theme.text2
            }
        }
        AppButton {
            objectName: "chooseLocationButton"
            visible: !bar.home.hasDestination
            implicitHeight: Theme.controlHeightPrimary
            horizontalPadding: 20
            text: "选择位置…"
            onClicked: chooser.ask()
        }
        PrimaryButton {
            objectName: "primaryAction"
            visible: !bar.choosesOnly && bar.home.hasDestination
            enabled: !bar.home.organizePrimaryDisabled
            text: bar.home.organizePrimaryTitle
            onClicked: bar.home.runOrganizePrimaryAction()
        }
    }
    FolderChooser {
        id: chooser
        archive: bar.archive
    }
}
