// The screen 归档库: list and mail.
pragma ComponentBehavior: Bound

import QtQuick
import Corvane

ScreenPage {
    id: page

    readonly property LibraryScreen screen: app.library
    readonly property bool showsPanes: screen.state === LibraryScreen.Listed || screen.state === LibraryScreen.NoMatch
    readonly property int leastListWidth: 352
    readonly property int mostListWidth: 560
    readonly property int usualListWidth: 400
    readonly property int leastDetailWidth: 400
    readonly property int roomForList: Math.max(leastListWidth, Math.min(mostListWidth, width - leastDetailWidth))
    // What the user wants, and what there is room for.
    property real wantedListWidth: app.lengths.stored("libraryList", usualListWidth, leastListWidth,
        mostListWidth)
    readonly property int listWidth: Math.max(leastListWidth,
        Math.min(page.narrow ? Math.min(wantedListWidth, 360) : wantedListWidth, roomForList))

    function keepListWidth(width: real) {
        wantedListWidth = width;
        app.lengths.store("libraryList", width);
    }
    // The first list takes the keyboard from a head that had it for want of anything else.
    property bool awaitsList: true
    function handKeyboardTo(part: Item) {
        const wasAwaited = awaitsList && part === panes && part.visible;
        if (part.visible && (wasAwaited ? !head.searchField.activeFocus : !head.activeFocus))
            part.focus = true;
        if (wasAwaited)
            awaitsList = false;
    }
    function enterList() {
        list.view.forceActiveFocus(Qt.TabFocusReason);
    }

    objectName: "libraryPage"
    searchField: head.searchField
    onShown: screen.appear()
    onEscaped: screen.filters.clearYears()

    LibraryHead {
        id: head
        width: parent.width
        low: page.low
        margin: page.margin
        narrow: page.narrow
        screen: page.screen
        onListRequested: page.enterList()
    }
    Rectangle {
        anchors.bottom: head.bottom
        width: parent.width
        height: Theme.hairline
        color: Theme.line
    }
    FocusScope {
        id: panes
        anchors.top: head.bottom
        anchors.bottom: parent.bottom
        width: parent.width
        visible: page.showsPanes
        focus: true
        onVisibleChanged: page.handKeyboardTo(panes)

        LibraryListPane {
            id: list
            objectName: "libraryListPane"
            width: page.listWidth - Theme.hairline
            height: parent.height
            focus: true
            low: page.low
            screen: page.screen
            onMenuRequested: (x, y) => (menu.made() as LibraryMenu)?.popup(list, x, y)
            onPageRequested: forward => detail.turnPage(forward)
        }
        ArchivedMailView {
            id: detail
            objectName: "archivedMail"
            anchors.left: splitter.right
            anchors.right: parent.right
            height: parent.height
            screen: page.screen
            low: page.low
            onMenuRequested: button => (menu.made() as LibraryMenu)?.popup(button, 0, button.height + Theme.half)
            onSaveRequested: row => (saving.made() as SaveSheet)?.ask(row)
        }
        Splitter {
            id: splitter
            x: list.x + list.width
            height: parent.height
            paneWidth: page.listWidth
            minimum: page.leastListWidth
            maximum: page.roomForList
            onMoved: width => page.wantedListWidth = width
            onSettled: width => page.keepListWidth(width)
            onRestored: page.keepListWidth(page.usualListWidth)
        }
    }
    LibraryState {
        id: reason
        anchors.top: head.bottom
        anchors.bottom: parent.bottom
        width: parent.width
        visible: !page.showsPanes
        onVisibleChanged: page.handKeyboardTo(reason)
        screen: page.screen
        onArchiveRequested: page.placeRequested("home")
    }

    OnDemand {
        id: menu
        source: Qt.resolvedUrl("LibraryMenu.qml")
        properties: ({ screen: page.screen })
    }
    OnDemand {
        id: saving
        source: Qt.resolvedUrl("detail/SaveSheet.qml")
        properties: ({ attachments: page.screen.attachments })
    }
    OnDemand {
        source: Qt.resolvedUrl("removal/RemovalSheet.qml")
        properties: ({ removal: page.screen.removal })
        wanted: page.screen.removal.step !== RemovalQuestion.Closed
    }
    OnDemand {
        id: end
        source: Qt.resolvedUrl("removal/RemovalEndSheet.qml")
        properties: ({ removal: page.screen.removal })
        wanted: page.screen.removal.step === RemovalQuestion.Failed
    }
    Connections {
        target: end.item
        function onCopyRequested() {
            page.screen.actions.copyFailures();
        }
        function onFolderRequested() {
            page.screen.actions.openFailureFolder();
        }
    }

    Binding {
        target: page.screen
        property: "held"
        value: list.pressed || (menu.item?.opened ?? false)
    }
    Connections {
        target: page.screen.attachments
        function onNoticed(text: string) {
            notice.show(text);
        }
    }
    Connections {
        target: page.screen.actions
        function onNoticed(text: string) {
            notice.show(text);
        }
    }
    Notice {
        id: notice
        area: page
    }
}
