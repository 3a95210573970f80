// Every place at which an archive lies or lay: whether it is there, how much it holds, whether it is whole.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Corvane

Sheet {
    id: sheet

    required property PlacesScreen screen
    // Right edges of the columns, from the right of the table.
    readonly property int countEdge: 408
    readonly property int sizeEdge: 320
    readonly property int seenEdge: 204

    function show() {
        screen.open();
        open();
    }
    function askToForget(row: int) {
        question.title = screen.forgetTitle(row);
        question.line = screen.forgetLine();
        question.open();
    }
    function choose(row: int) {
        screen.beginChoice(row);
        chooser.ask();
    }

    objectName: "placesSheet"
    title: "归档位置"
    subtitle: screen.summary
    wantedWidth: 920
    scrolls: false
    primary: done
    note: "校验会读出每个 .eml 并与记录比对，可以随时取消。"
    onClosed: screen.close()

    component Caption: AppText {
        anchors.verticalCenter: parent.verticalCenter
        role: AppText.Note
        color: Theme.text2
    }

    fillingItems: Rectangle {
        id: table
        anchors.fill: parent
        // As high as the places need, and no higher than the window.
        implicitHeight: head.height + Math.max(Theme.rowFull, list.contentHeight) + 2
        radius: Theme.radiusLarge
        color: "transparent"
        border.color: Theme.line

        Rectangle {
            id: head
            x: 1
            y: 1
            width: parent.width - 2
            height: Theme.tableHeadHeight
            radius: Theme.radiusLarge - 1
            color: Theme.page

            Caption {
                x: 48
                text: "位置"
            }
            Caption {
                anchors.right: parent.right
                anchors.rightMargin: sheet.countEdge
                text: "封数"
            }
            Caption {
                anchors.right: parent.right
                anchors.rightMargin: sheet.sizeEdge
                text: "体积"
            }
            Caption {
                anchors.right: parent.right
                anchors.rightMargin: sheet.seenEdge
                text: "上次见到"
            }
        }
        ListView {
            id: list

            // The row that has the keyboard, or had it last.
            property int keyRow: 0

            function go(row: int) {
                if (row < 0 || row >= count)
                    return;
                positionViewAtIndex(row, ListView.Contain);
                (itemAtIndex(row) as PlaceRowItem)?.enter();
            }

            objectName: "placeList"
            x: 1
            y: head.height + 1
            width: parent.width - 2
            height: parent.height - y - 1
            clip: contentHeight > height
            boundsBehavior: Flickable.StopAtBounds
            keyNavigationEnabled: false
            currentIndex: -1
            // Few, and each keeps its buttons while its figures change.
            cacheBuffer: 4000
            model: sheet.screen.rows
            Accessible.role: Accessible.List
            Accessible.name: "归档位置"
            Keys.onUpPressed: go(keyRow - 1)
            Keys.onDownPressed: go(keyRow + 1)

            delegate: PlaceRowItem {
                width: list.width
                countEdge: sheet.countEdge
                sizeEdge: sheet.sizeEdge
                seenEdge: sheet.seenEdge
                screen: sheet.screen
                onEntered: {
                    list.keyRow = index;
                    list.positionViewAtIndex(index, ListView.Contain);
                }
                onForgetRequested: sheet.askToForget(index)
                onChoiceRequested: sheet.choose(index)
            }
        }
        EmptyState {
            anchors.fill: list
            visible: title.length > 0
            quiet: true
            symbol: ""
            title: sheet.screen.emptyText
        }
    }
    barItems: [
        AppButton {
            objectName: "addPlace"
            implicitHeight: Theme.controlHeightPrimary
            horizontalPadding: 20
            symbol: "folder-open"
            text: "添加位置…"
            onClicked: sheet.choose(-1)
        },
        AppButton {
            objectName: "verifyAll"
            implicitHeight: Theme.controlHeightPrimary
            horizontalPadding: 20
            enabled: sheet.screen.canVerifyAll
            text: "全部校验"
            onClicked: sheet.screen.verifyAll()
        },
        PrimaryButton {
            id: done
            objectName: "placesDone"
            text: "完成"
            onClicked: sheet.close()
        }
    ]

    ConfirmSheet {
        id: question
        objectName: "forgetQuestion"
        prefersReject: true
        acceptText: "忘记"
        onAccepted: sheet.screen.forget()
    }
    FolderChooser {
        id: chooser
        picker: sheet.screen.picker
        title: "添加归档位置"
        onFolderChosen: folder => sheet.screen.addFolder(folder)
    }
}
