// The one figure of the overview: how much room may be freed, or what is to be done until that is known.
import QtQuick
import QtQuick.Layouts
import Corvane

ColumnLayout {
    id: pane

    required property ArchivedScreen screen
    property bool low: false
    readonly property var hero: screen.hero

    signal updateRequested

    objectName: "overviewHero"
    spacing: 0

    RowLayout {
        Layout.fillWidth: true
        visible: !pane.screen.proof.isRunning
        spacing: 6

        Symbol {
            size: 18
            name: pane.hero.symbol
            color: pane.hero.kind.length > 0 ? Theme.toneText(pane.hero.kind) : Theme.text2
        }
        AppText {
            text: pane.hero.title
            font.weight: Theme.medium
            color: pane.hero.kind.length > 0 ? Theme.toneText(pane.hero.kind) : Theme.text2
        }
    }
    RowLayout {
        Layout.fillWidth: true
        Layout.topMargin: 2
        visible: !pane.screen.proof.isRunning
        spacing: 10

        AppText {
            objectName: "heroFigure"
            Layout.minimumWidth: implicitWidth
            text: pane.hero.figure
            role: AppText.Hero
        }
        AppText {
            Layout.fillWidth: true
            Layout.alignment: Qt.AlignBottom
            Layout.bottomMargin: 4
            text: pane.hero.count
            role: AppText.Heading
            font.weight: Theme.regular
            color: Theme.text2
        }
        PrimaryButton {
            objectName: "heroAction"
            visible: text.length > 0
            implicitHeight: Theme.controlHeight
            text: pane.hero.actionTitle
            onClicked: pane.hero.action === "prove" ? pane.screen.proof.start() : pane.updateRequested()
        }
    }
    RowLayout {
        Layout.fillWidth: true
        visible: pane.screen.proof.isRunning

        AppText {
            Layout.fillWidth: true
            text: "正在逐字节核对"
        }
        AppText {
            objectName: "heroProofCount"
            text: pane.screen.proof.count
            color: Theme.text2
        }
    }
    RowLayout {
        Layout.fillWidth: true
        Layout.topMargin: 6
        visible: pane.screen.proof.isRunning
        spacing: 12

        ProgressTrack {
            Layout.fillWidth: true
            value: pane.screen.proof.fraction
            name: "逐字节核对"
        }
        AppButton {
            objectName: "cancelOverviewProof"
            text: "取消核对"
            onClicked: pane.screen.proof.cancel()
        }
    }
    AppText {
        objectName: "heroLine"
        Layout.fillWidth: true
        Layout.topMargin: 2
        text: pane.screen.proof.isRunning ? "取消后，核对过的不用再来。" : pane.hero.line
        wrapMode: Text.Wrap
        maximumLineCount: 3
        color: Theme.text2
    }
    ProgressTrack {
        Layout.fillWidth: true
        Layout.topMargin: 8
        visible: pane.screen.check.isRunning && !pane.screen.proof.isRunning
        indeterminate: visible
        name: "正在对照 Mail 中的原件状态"
    }
    AppText {
        objectName: "heroNote"
        Layout.fillWidth: true
        visible: text.length > 0 && !pane.screen.proof.isRunning
        text: pane.hero.note
        role: AppText.Note
        wrapMode: Text.Wrap
        maximumLineCount: 3
        color: Theme.text3
    }
}
