// The foot of the sidebar: where the archive lies, and the work that runs; a press on that leads to its screen.
import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Corvane

FocusGroup {
    id: foot

    // A destinationItem.
    required property var destination
    required property Activity activity
    required property ArchiveScreen archive
    // One count for the sheet and for here.
    readonly property ArchiveProgress run: archive.progress
    readonly property string figureText: archive.isRunning ? run.completedText + " / " + run.totalText : activity.figure

    signal placeChosen(string key)
    signal placesRequested
    signal importRequested
    signal exportRequested

    implicitHeight: column.implicitHeight + 27

    Rectangle {
        width: parent.width
        height: Theme.hairline
        color: Theme.line
    }
    ColumnLayout {
        id: column
        x: 16
        y: 13
        width: parent.width - 32
        spacing: 0

        RowLayout {
            Layout.topMargin: -5
            spacing: 0

            AppText {
                Layout.fillWidth: true
                text: "归档位置"
                role: AppText.Note
                color: Theme.text3
            }
            IconButton {
                id: more
                objectName: "settingsMenuButton"
                Layout.rightMargin: -6
                implicitHeight: Theme.minimumTarget
                bare: true
                symbol: "ellipsis"
                help: "归档位置与配置备份"
                onClicked: {
                    const rows = menu.made() as SettingsMenu;
                    rows.popup(more, 0, -rows.implicitHeight - Theme.half);
                }
            }
        }
        RowLayout {
            Layout.topMargin: -1
            spacing: 8

            Symbol {
                Layout.alignment: Qt.AlignTop
                Layout.topMargin: 1
                size: 18
                name: foot.destination.symbol
                color: foot.destination.isMissing ? Theme.attention : Theme.text2
            }
            ColumnLayout {
                Layout.fillWidth: true
                spacing: 1

                AppText {
                    objectName: "archivePlaceName"
                    Layout.fillWidth: true
                    text: foot.destination.shortName
                    font.weight: Theme.medium
                    wholeText: foot.destination.isChosen ? foot.destination.fullPath : text
                }
                AppText {
                    objectName: "archivePlaceLine"
                    Layout.fillWidth: true
                    text: foot.destination.line
                    role: AppText.Note
                    color: foot.destination.isMissing ? Theme.attention : Theme.text3
                }
            }
        }
        Line {
            Layout.fillWidth: true
            Layout.topMargin: 10
            visible: foot.activity.running || foot.archive.background.endText.length > 0
        }
        T.AbstractButton {
            id: work
            objectName: "activity"
            Layout.fillWidth: true
            Layout.topMargin: 6
            visible: foot.activity.running
            implicitHeight: 36
            hoverEnabled: true
            focusPolicy: Qt.TabFocus
            Accessible.role: Accessible.Button
            Accessible.name: foot.figureText.length > 0 ? foot.activity.title + "，" + foot.figureText : foot.activity.title
            Keys.onReturnPressed: clicked()
            onClicked: foot.placeChosen(foot.activity.place)

            contentItem: Item {
                AppText {
                    y: 3
                    width: parent.width - figure.implicitWidth - 8
                    text: foot.activity.title
                    role: AppText.Note
                    font.underline: work.hovered
                    Accessible.ignored: true
                }
                AppText {
                    id: figure
                    y: 3
                    anchors.right: parent.right
                    text: foot.figureText
                    role: AppText.Note
                    color: Theme.text3
                    Accessible.ignored: true
                }
                ProgressTrack {
                    y: 28
                    width: parent.width
                    thickness: Theme.progressHeightSidebar
                    name: foot.activity.title
                    value: foot.archive.isRunning ? foot.run.fraction : foot.activity.value
                    indeterminate: foot.activity.indeterminate && foot.activity.running
                }
            }
            background: FocusRing {
                shown: work.activeFocus && KeyboardFocus.inUse
            }
        }
        RowLayout {
            objectName: "runEnd"
            Layout.fillWidth: true
            Layout.topMargin: 8
            visible: foot.archive.background.endText.length > 0
            spacing: 6
            Accessible.role: Accessible.AlertMessage
            Accessible.name: foot.archive.background.endText

            Symbol {
                size: 14
                name: foot.archive.background.endTone === "safe" ? "circle-check" : foot.archive.background.endTone === "danger" ? "octagon-x"
                    : foot.archive.background.endTone === "attention" ? "triangle-alert" : "info"
                color: foot.archive.background.endTone.length > 0 ? Theme.toneText(foot.archive.background.endTone) : Theme.text2
            }
            AppText {
                objectName: "runEndText"
                Layout.fillWidth: true
                text: foot.archive.background.endText
                role: AppText.Note
                Accessible.ignored: true
            }
            PlainButton {
                objectName: "showRunEnd"
                Layout.rightMargin: -horizontalPadding
                implicitHeight: Theme.minimumTarget
                labelRole: AppText.Note
                text: "查看"
                onClicked: foot.archive.background.showEnd()
            }
        }
    }
    OnDemand {
        id: menu
        source: Qt.resolvedUrl("SettingsMenu.qml")
    }
    Connections {
        target: menu.item
        function onPlacesRequested() {
            foot.placesRequested();
        }
        function onImportRequested() {
            foot.importRequested();
        }
        function onExportRequested() {
            foot.exportRequested();
        }
    }
}
