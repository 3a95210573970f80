// 正在归档: how far the run is and how long it still takes. Cancel is there from the first second and asks nothing.
import QtQuick
import QtQuick.Layouts
import Corvane

Sheet {
    id: sheet

    required property ArchiveScreen archive
    readonly property bool wanted: archive.isShown && archive.stage === ArchiveScreen.Running
    readonly property ArchiveProgress progress: archive.progress

    objectName: "runningSheet"
    title: "正在归档"
    subtitle: archive.place.destination.place
    subtitleSymbol: archive.place.destination.symbol
    wantedWidth: 580
    dismissable: false
    holdsKeyboard: true
    note: "可以随时取消，已写好的邮件会保留。"
    onWantedChanged: visible = wanted
    Component.onCompleted: visible = wanted

    RowLayout {
        Layout.fillWidth: true
        Layout.topMargin: 4
        spacing: 8

        AppText {
            objectName: "completedText"
            Layout.alignment: Qt.AlignBaseline
            text: sheet.progress.completedText
            role: AppText.Hero
        }
        AppText {
            Layout.alignment: Qt.AlignBaseline
            Layout.fillWidth: true
            text: "/ " + sheet.progress.totalText
            role: AppText.Heading
            font.weight: Theme.regular
            color: Theme.text2
        }
        AppText {
            Layout.alignment: Qt.AlignBaseline
            text: sheet.progress.percentText
            color: Theme.text2
        }
    }
    ProgressTrack {
        Layout.fillWidth: true
        Layout.topMargin: 8
        thickness: Theme.progressHeightRun
        value: sheet.progress.fraction
        name: "正在归档"
    }
    AppText {
        objectName: "statusText"
        Layout.fillWidth: true
        Layout.topMargin: 10
        text: sheet.progress.isCancelling ? "正在取消…" : sheet.progress.statusText
    }
    Line {
        Layout.fillWidth: true
        Layout.topMargin: 20
        Layout.bottomMargin: 14
    }
    RowLayout {
        Layout.fillWidth: true
        spacing: 0

        StatTile {
            Layout.fillWidth: true
            Layout.preferredWidth: 1
            first: true
            figureRole: AppText.Heading
            caption: "速度"
            figure: sheet.progress.rateText
        }
        StatTile {
            Layout.fillWidth: true
            Layout.preferredWidth: 1
            figureRole: AppText.Heading
            caption: "剩余时间"
            figure: sheet.progress.timeLeftText
        }
        StatTile {
            Layout.fillWidth: true
            Layout.preferredWidth: 1
            figureRole: AppText.Heading
            caption: "已用时"
            figure: sheet.progress.elapsedText
        }
    }
    barItems: [
        AppButton {
            objectName: "backgroundButton"
            implicitHeight: Theme.controlHeightPrimary
            horizontalPadding: 20
            text: "在后台继续"
            help: "归档继续进行，可以先看别的；点边栏下方的进度可以回来"
            onClicked: sheet.archive.background.send()
        },
        AppButton {
            objectName: "cancelRunButton"
            implicitHeight: Theme.controlHeightPrimary
            horizontalPadding: 20
            enabled: !sheet.progress.isCancelling
            text: sheet.progress.isCancelling ? "正在取消…" : "取消归档"
            onClicked: sheet.archive.cancelRun()
        }
    ]
}
