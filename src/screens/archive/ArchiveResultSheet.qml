// What came of a run: figures that add up to what was chosen, what failed and why, what has several versions.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Corvane

Sheet {
    id: sheet

    required property ArchiveScreen archive
    readonly property bool wanted: archive.isShown && archive.stage === ArchiveScreen.Result
    readonly property var result: archive.outcome.view

    objectName: "resultSheet"
    title: result.title
    subtitle: result.subtitle
    symbol: result.symbol
    symbolColor: result.tone.length > 0 ? Theme.toneText(result.tone) : Theme.text2
    wantedWidth: 720
    note: result.note
    // What was cancelled isn't taken up again by a key that was meant to close.
    primary: result.restTitle.length > 0 ? quit : done
    onWantedChanged: visible = wanted
    Component.onCompleted: visible = wanted
    // Only what the user closes: at a change of the stage the sheet is no longer wanted.
    onAboutToHide: if (wanted) archive.close()

    RowLayout {
        Layout.fillWidth: true
        spacing: 0

        Repeater {
            model: sheet.result.tiles.length
            delegate: StatTile {
                required property int index
                readonly property var entry: sheet.result.tiles[index] ?? ({})
                objectName: "tile" + index
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                first: index === 0
                caption: entry.caption ?? ""
                figure: entry.figure ?? ""
                line: entry.line ?? ""
                kind: entry.meaning ?? ""
            }
        }
    }
    ResultPlace {
        objectName: "resultPlace"
        Layout.fillWidth: true
        Layout.topMargin: 18
        archive: sheet.archive
    }
    Banner {
        objectName: "archiveWarnings"
        Layout.fillWidth: true
        Layout.topMargin: 18
        visible: sheet.result.warnings.length > 0
        kind: "attention"
        headline: "关于这个归档库"
        lines: sheet.result.warnings
    }
    RowLayout {
        Layout.fillWidth: true
        Layout.topMargin: 18
        visible: sheet.result.failureTitle.length > 0
        spacing: 12

        AppText {
            Layout.fillWidth: true
            text: sheet.result.failureTitle
            role: AppText.Heading
            Accessible.role: Accessible.Heading
        }
        CopyButton {
            objectName: "copyFailuresButton"
            onClicked: sheet.archive.outcome.copyFailures()
        }
    }
    FailureGroups {
        Layout.fillWidth: true
        Layout.topMargin: 8
        visible: sheet.result.failureTitle.length > 0
        groups: sheet.result.failureGroups
    }
    RowLayout {
        Layout.fillWidth: true
        Layout.topMargin: 18
        Layout.bottomMargin: 8
        visible: sheet.result.variantTitle.length > 0
        spacing: 12

        AppText {
            Layout.fillWidth: true
            text: sheet.result.variantTitle
            font.weight: Theme.medium
        }
        CopyButton {
            objectName: "copyVariantsButton"
            onClicked: sheet.archive.outcome.copyVariants()
        }
    }
    Rectangle {
        Layout.fillWidth: true
        visible: sheet.result.variantTitle.length > 0
        implicitHeight: variants.implicitHeight + 14
        radius: Theme.radiusLarge
        color: Theme.surface
        border.color: Theme.line

        Column {
            id: variants
            x: 16
            y: 7
            width: parent.width - 32

            Repeater {
                model: sheet.result.variants
                delegate: AppText {
                    required property string modelData
                    width: variants.width
                    height: 26
                    text: modelData
                }
            }
        }
    }
    barItems: [
        AppButton {
            id: quit
            objectName: "closeResultButton"
            visible: sheet.result.restTitle.length > 0
            implicitHeight: Theme.controlHeightPrimary
            horizontalPadding: 20
            text: "关闭"
            onClicked: sheet.close()
        },
        AppButton {
            objectName: "retryButton"
            visible: sheet.result.retryTitle.length > 0
            implicitHeight: Theme.controlHeightPrimary
            horizontalPadding: 20
            text: sheet.result.retryTitle
            onClicked: sheet.archive.retryFailed()
        },
        PrimaryButton {
            id: done
            objectName: "doneButton"
            text: sheet.result.restTitle.length > 0 ? sheet.result.restTitle : "完成"
            onClicked: sheet.result.restTitle.length > 0 ? sheet.archive.continueRest() : sheet.close()
        }
    ]
}
