// The screen 邮件列表: filters, list, detail. Where the window is too narrow the filters are behind a button.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Corvane

ScreenPage {
    id: page

    readonly property MailListScreen screen: app.mails
    readonly property bool showsPanes: screen.state === MailListScreen.Listed
        || screen.state === MailListScreen.NoMatch || screen.state === MailListScreen.NothingLocal

    readonly property int filterWidth: 240
    readonly property int leastListWidth: 352
    // A wide window shares what it has.
    readonly property int usualListWidth: Math.max(372, Math.min(480, Math.round(width * 0.27)))
    readonly property int mostListWidth: usualListWidth + 28
    readonly property int leastDetailWidth: 400
    readonly property bool showsFilters: width - filterWidth - leastListWidth >= leastDetailWidth
    readonly property int roomForList: width - (showsFilters ? filterWidth : 0) - leastDetailWidth
    // What the user wants, and what there is room for.
    property real wantedListWidth: app.lengths.stored("mailList", usualListWidth, leastListWidth, mostListWidth)
    readonly property int listWidth: Math.max(leastListWidth, Math.min(wantedListWidth, roomForList))

    function keepListWidth(width: real) {
        wantedListWidth = width;
        app.lengths.store("mailList", width);
    }

    // One of both has gone, the other come; who is typing in the head goes on.
    function handKeyboardTo(part: Item) {
        if (part.visible && !head.activeFocus)
            part.focus = true;
    }

    objectName: "mailListPage"
    searchField: search

    ScreenHead {
        id: head
        width: parent.width
        title: "邮件列表"
        low: page.low
        margin: page.margin
        leading: SegmentedControl {
            objectName: "migratedFilter"
            name: "归档状态"
            options: ["全部", "未归档", "已归档"]
            currentIndex: page.screen.filters.migrated
            onActivated: index => page.screen.filters.migrated = index
        }

        SearchField {
            id: search
            objectName: "mailSearch"
            placeholderText: "搜索主题、发件人、收件人、邮箱、附件名"
            text: page.screen.filters.query
            onTextChanged: page.screen.filters.query = text
            onAccepted: page.screen.filters.applyQuery()
            onListRequested: list.view.forceActiveFocus(Qt.TabFocusReason)
            onLeaving: list.view.forceActiveFocus(Qt.TabFocusReason)
        }
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

        FilterPane {
            objectName: "filterPane"
            width: page.filterWidth - Theme.hairline
            height: parent.height
            visible: page.showsFilters
            filters: page.screen.filters
        }
        Rectangle {
            x: page.filterWidth - Theme.hairline
            width: Theme.hairline
            height: parent.height
            visible: page.showsFilters
            color: Theme.line
        }
        MailListPane {
            id: list
            objectName: "mailListPane"
            x: page.showsFilters ? page.filterWidth : 0
            width: page.listWidth - Theme.hairline
            height: parent.height
            focus: true
            screen: page.screen
            showsFilterButton: !page.showsFilters
            onFiltersRequested: button => filterPopup.openAt(button)
            onMenuRequested: (x, y) => (menu.made() as MessageMenu)?.popup(list, x, y)
            onPageRequested: forward => detail.turnPage(forward)
        }
        MessageDetailView {
            id: detail
            objectName: "messageDetail"
            anchors.left: splitter.right
            anchors.right: parent.right
            height: parent.height
            screen: page.screen
            low: page.low
            onMenuRequested: button => (menu.made() as MessageMenu)?.popup(button, 0, button.height + Theme.half)
        }
        Splitter {
            id: splitter
            objectName: "listSplitter"
            x: list.x + list.width
            height: parent.height
            paneWidth: page.listWidth
            minimum: page.leastListWidth
            maximum: Math.min(page.mostListWidth, page.roomForList)
            onMoved: width => page.wantedListWidth = width
            onSettled: width => page.keepListWidth(width)
            onRestored: page.keepListWidth(page.usualListWidth)
        }
    }

    MailListState {
        id: reason
        anchors.top: head.bottom
        anchors.bottom: parent.bottom
        width: parent.width
        visible: !page.showsPanes
        onVisibleChanged: page.handKeyboardTo(reason)
        screen: page.screen
        canUpdate: page.app.home.scan.canUpdate
        onUpdateRequested: page.app.refreshAllMailData()
    }

    OnDemand {
        id: menu
        source: Qt.resolvedUrl("MessageMenu.qml")
        properties: ({ screen: page.screen })
    }
    T.Popup {
        id: filterPopup
        objectName: "filterPopup"

        property Item opener: null

        function openAt(button: Item) {
            opener = button;
            const place = button.mapToItem(page, 0, button.height + Theme.half);
            x = place.x;
            y = place.y;
            open();
        }

        width: page.filterWidth + 24
        height: Math.min(popupPane.contentHeight, page.height - y - Theme.space)
        focus: true
        padding: Theme.hairline
        closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutside
        onOpened: KeyboardFocus.enter(popupPane)
        // A press beside it may have given the keyboard to another part.
        onClosed: {
            if (!KeyboardFocus.isHeldIn(page))
                opener.forceActiveFocus(KeyboardFocus.inUse ? Qt.TabFocusReason : Qt.OtherFocusReason);
        }
        contentItem: FilterPane {
            id: popupPane
            filters: page.screen.filters
        }
        background: Rectangle {
            color: Theme.sheet
            border.color: Theme.lineStrong
            radius: Theme.radiusLarge
        }
    }

    Binding {
        target: page.screen
        property: "held"
        value: list.pressed || (menu.item?.opened ?? false)
    }
    Connections {
        target: page.screen.actions
        function onFailed(text: string) {
            notice.show(text);
        }
    }
    Connections {
        target: page.screen.attachments
        function onSaid(text: string) {
            notice.show(text);
        }
    }
    Connections {
        target: page.screen.access
        function onFailed(text: string) {
            notice.show(text);
        }
    }
    Notice {
        id: notice
        area: page
    }
}
