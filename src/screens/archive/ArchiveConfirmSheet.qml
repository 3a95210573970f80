// 确认归档: where the mail goes, and which.
import QtQuick
import QtQuick.Layouts
import Corvane

Sheet {
    id: sheet

    required property ArchiveScreen archive
    readonly property bool wanted: archive.isShown && archive.stage === ArchiveScreen.Confirm
    readonly property var remark: archive.place.destination.archiveRemark
    readonly property var confirmation: archive.confirmation
    readonly property bool hasError: archive.errorText.length > 0

    objectName: "confirmSheet"
    title: "确认归档"
    subtitle: confirmation.archiveSelectionSummary + (archive.candidates.tickState !== 0 ? "。Mail 里的原件不会改动。" : "")
    wantedWidth: 820
    mostHeight: 760
    scrolls: false
    bodyGap: 0
    primary: start
    note: confirmation.spaceText
    noteLine: confirmation.footnote
    noteColor: confirmation.isSpaceShort ? Theme.attention : Theme.text1
    onWantedChanged: visible = wanted
    Component.onCompleted: visible = wanted
    // Only what the user closes: at a change of the stage the sheet is no longer wanted.
    onAboutToHide: if (wanted) archive.close()

    fillingItems: ColumnLayout {
        anchors.fill: parent
        spacing: 0

        RowLayout {
            Layout.fillWidth: true
            spacing: 12

            AppText {
                Layout.fillWidth: true
                text: "归档位置"
                role: AppText.Heading
                Accessible.role: Accessible.Heading
            }
            AppButton {
                objectName: "chooseFolderButton"
                implicitHeight: Theme.controlHeightPane
                symbol: "folder-open"
                text: "选择其它文件夹…"
                onClicked: chooser.ask()
            }
        }
        DestinationCards {
            Layout.fillWidth: true
            Layout.topMargin: visible ? 8 : 0
            visible: count > 0
            destinations: sheet.archive.place.quickDestinations
        }
        Banner {
            objectName: "remarkBanner"
            Layout.fillWidth: true
            Layout.topMargin: 12
            visible: sheet.hasError || sheet.remark.kind.length > 0
            kind: sheet.hasError ? "danger" : sheet.remark.kind
            headline: sheet.hasError ? "归档没有完成" : sheet.remark.title
            lines: sheet.hasError ? sheet.archive.errorText.split("\n\n") : [sheet.remark.text]
            lineMeasure: Theme.bodyMeasure
        }
        Banner {
            objectName: "refusalBanner"
            Layout.fillWidth: true
            Layout.topMargin: 12
            visible: sheet.archive.place.quickDestinations.refusal.length > 0
            kind: "danger"
            headline: "不能归档到这里，位置没有改"
            lines: [sheet.archive.place.quickDestinations.refusal]
            lineMeasure: Theme.bodyMeasure
        }
        RebuildBanner {
            Layout.fillWidth: true
            Layout.topMargin: visible ? 12 : 0
            notice: sheet.archive.place.rebuildNotice
        }
        RowLayout {
            Layout.fillWidth: true
            Layout.topMargin: 20
            spacing: 12

            AppText {
                text: "要归档的邮件"
                role: AppText.Heading
                Accessible.role: Accessible.Heading
            }
            AppText {
                Layout.fillWidth: true
                text: sheet.confirmation.archiveScopeTitle
                color: Theme.text2
            }
            AppText {
                text: "体积至少"
                color: Theme.text3
            }
            SegmentedControl {
                objectName: "minimumSize"
                name: "体积至少"
                options: sheet.confirmation.sizeTitles
                currentIndex: sheet.archive.minimumSize
                onActivated: index => sheet.archive.minimumSize = index
            }
        }
        CandidateList {
            id: list
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.topMargin: 10
            archive: sheet.archive
        }
    }
    barItems: [
        AppButton {
            objectName: "cancelConfirmButton"
            implicitHeight: Theme.controlHeightPrimary
            horizontalPadding: 20
            text: "取消"
            onClicked: sheet.close()
        },
        PrimaryButton {
            id: start
            objectName: "startArchiveButton"
            enabled: sheet.confirmation.canStart
            text: sheet.confirmation.archiveButtonTitle
            onClicked: sheet.archive.start()
        }
    ]

    FolderChooser {
        id: chooser
        picker: sheet.archive.place.folderPicker
        folder: sheet.archive.place.destination.folder
        onFolderChosen: folder => sheet.archive.place.quickDestinations.chooseFolder(folder)
    }
}
