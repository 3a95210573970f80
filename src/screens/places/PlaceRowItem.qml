// One place: its name and state, its figures, what can be done, and below that its work or what came of it.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Corvane

FocusGroup {
    id: row

    required property int index
    required property string name
    required property string path
    required property string symbol
    required property bool isDefault
    required property string stateText
    required property string stateKind
    required property string stateSymbol
    required property string countText
    required property string sizeText
    required property string seenText
    required property string workText
    required property real workShare
    required property string timeLeftText
    required property bool isWaiting
    required property bool isCounted
    required property string reportKind
    required property string reportTitle
    required property string reportLine
    required property string reportDate
    required property var findings
    required property int findingsLeftOut
    required property bool offersRebuild
    required property bool canVerify
    required property bool canBeDefault
    required property bool canShow
    required property bool canForget
    required property bool canReplace
    required property string spokenName

    required property PlacesScreen screen
    property int countEdge
    property int sizeEdge
    property int seenEdge
    readonly property bool isAtWork: workText.length > 0

    signal entered
    signal forgetRequested
    signal choiceRequested

    // The keyboard goes to the first button that can be pressed.
    function enter() {
        for (const button of [verify, makeDefault, forgets, show, more]) {
            if (button.visible && button.enabled) {
                button.forceActiveFocus(Qt.TabFocusReason);
                return;
            }
        }
    }

    objectName: "place" + index
    vertical: false
    implicitHeight: column.implicitHeight + 24
    Accessible.role: Accessible.ListItem
    Accessible.name: spokenName
    onActiveFocusChanged: if (activeFocus) entered()

    component Figure: AppText {
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        Accessible.ignored: true
    }

    Rectangle {
        visible: row.index > 0
        width: parent.width
        height: Theme.hairline
        color: Theme.line
    }
    ColumnLayout {
        id: column
        x: 17
        y: 12
        width: parent.width - 2 * x
        spacing: 10

        Item {
            Layout.fillWidth: true
            implicitHeight: 38

            Symbol {
                anchors.verticalCenter: parent.verticalCenter
                size: 20
                name: row.symbol
                color: Theme.text2
            }
            RowLayout {
                x: 32
                width: parent.width - x - row.countEdge - 56
                spacing: Theme.space

                AppText {
                    Layout.maximumWidth: parent.width - chips.implicitWidth - Theme.space
                    text: row.name
                    Accessible.ignored: true
                }
                Row {
                    id: chips
                    Layout.fillWidth: true
                    spacing: Theme.space

                    Chip {
                        visible: row.isDefault
                        text: "默认"
                    }
                    Chip {
                        objectName: "placeState"
                        text: row.stateText
                        kind: row.stateKind
                        symbol: row.stateSymbol
                    }
                }
            }
            AppText {
                x: 32
                y: 20
                width: parent.width - x - row.countEdge - 56
                text: row.path
                elide: Text.ElideMiddle
                role: AppText.Note
                color: Theme.text2
                Accessible.ignored: true
            }
            Figure {
                anchors.rightMargin: row.countEdge - 17
                text: row.countText
            }
            Figure {
                anchors.rightMargin: row.sizeEdge - 17
                text: row.sizeText
            }
            Figure {
                anchors.rightMargin: row.seenEdge - 17
                text: row.seenText
                role: AppText.Note
                color: Theme.text3
            }
            RowLayout {
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                spacing: Theme.space

                AppButton {
                    id: verify
                    objectName: "verifyPlace"
                    visible: row.canVerify
                    text: "校验"
                    onClicked: row.screen.verify(row.index)
                }
                AppButton {
                    id: makeDefault
                    objectName: "makeDefault"
                    visible: row.canBeDefault && !row.canVerify
                    text: "设为默认"
                    onClicked: row.screen.makeDefault(row.index)
                }
                AppButton {
                    id: forgets
                    objectName: "forgetPlace"
                    visible: !row.canShow
                    enabled: row.canForget
                    text: "忘记…"
                    onClicked: row.forgetRequested()
                }
                AppButton {
                    objectName: "replacePlace"
                    visible: row.canReplace
                    text: "重新指定…"
                    onClicked: row.choiceRequested()
                }
                IconButton {
                    id: show
                    objectName: "showPlace"
                    visible: row.canShow
                    symbol: "folder-open"
                    help: "打开文件夹"
                    onClicked: row.screen.showFolder(row.index)
                }
                IconButton {
                    id: more
                    objectName: "placeMore"
                    visible: !row.canReplace
                    symbol: "ellipsis"
                    help: "更多"
                    onClicked: menu.popup(more, 0, more.height + Theme.half)
                }
            }
        }
        RowLayout {
            objectName: "placeWork"
            Layout.fillWidth: true
            Layout.leftMargin: 32
            visible: row.isAtWork
            spacing: 12

            AppText {
                objectName: "placeWorkText"
                text: row.workText
                color: Theme.text2
            }
            ProgressTrack {
                Layout.fillWidth: true
                visible: !row.isWaiting
                name: row.workText
                value: row.workShare
                indeterminate: row.isAtWork && !row.isWaiting && !row.isCounted
            }
            Item {
                Layout.fillWidth: true
                visible: row.isWaiting
            }
            AppText {
                objectName: "placeTimeLeft"
                text: row.timeLeftText
                role: AppText.Note
                color: Theme.text2
            }
            AppButton {
                objectName: "cancelWork"
                implicitHeight: Theme.controlHeightPane
                text: "取消"
                help: "已经读过的不会白读，归档不会被改动"
                onClicked: row.screen.cancelWork(row.index)
            }
        }
        PlaceReportBox {
            Layout.fillWidth: true
            Layout.leftMargin: 32
            visible: row.reportKind.length > 0
            kind: row.reportKind
            title: row.reportTitle
            line: row.reportLine
            dateText: row.reportDate
            findings: row.findings
            leftOut: row.findingsLeftOut
            offersRebuild: row.offersRebuild
            onRebuildRequested: row.screen.rebuild(row.index)
            onFindingRequested: finding => row.screen.showFinding(row.index, finding)
            onCopyRequested: row.screen.copyFindings(row.index)
        }
    }
    AppMenu {
        id: menu
        objectName: "placeMenu"

        AppMenuRow {
            text: "校验"
            enabled: row.canVerify
            onTriggered: row.screen.verify(row.index)
        }
        AppMenuRow {
            text: "设为默认"
            enabled: row.canBeDefault
            onTriggered: row.screen.makeDefault(row.index)
        }
        AppMenuRow {
            text: "打开文件夹"
            enabled: row.canShow
            onTriggered: row.screen.showFolder(row.index)
        }
        AppMenuRow {
            text: "重建索引"
            enabled: row.offersRebuild
            onTriggered: row.screen.rebuild(row.index)
        }
        AppMenuLine {}
        AppMenuRow {
            text: "忘记…"
            enabled: row.canForget
            onTriggered: row.forgetRequested()
        }
    }
}
