// The head of the library: its three filters and the search.
import QtQuick
import Corvane

ScreenHead {
    id: head

    required property LibraryScreen screen
    property bool narrow: false
    property alias searchField: search

    signal listRequested

    title: "归档库"
    leading: [
        MenuButton {
            objectName: "locationFilter"
            implicitWidth: Math.min(head.narrow ? 128 : 180, leftPadding + contentItem.implicitWidth + rightPadding)
            implicitHeight: Theme.controlHeight
            symbol: "layers"
            name: "归档位置"
            model: head.screen.filters.locations
            currentIndex: head.screen.filters.location
            // Another list of choices begins at its first.
            onModelChanged: currentIndex = Qt.binding(() => head.screen.filters.location)
            onActivated: index => head.screen.filters.location = index
        },
        MenuButton {
            objectName: "accountFilter"
            implicitWidth: Math.min(head.narrow ? 128 : 180, leftPadding + contentItem.implicitWidth + rightPadding)
            implicitHeight: Theme.controlHeight
            symbol: "at-sign"
            name: "邮箱"
            model: head.screen.filters.accounts
            currentIndex: head.screen.filters.account
            // Another list of choices begins at its first.
            onModelChanged: currentIndex = Qt.binding(() => head.screen.filters.account)
            onActivated: index => head.screen.filters.account = index
        },
        MenuButton {
            objectName: "mailboxFilter"
            implicitWidth: Math.min(head.narrow ? 128 : 180, leftPadding + contentItem.implicitWidth + rightPadding)
            implicitHeight: Theme.controlHeight
            symbol: "folder"
            name: "文件夹"
            model: head.screen.filters.mailboxes
            currentIndex: head.screen.filters.mailbox
            // Another list of choices begins at its first.
            onModelChanged: currentIndex = Qt.binding(() => head.screen.filters.mailbox)
            onActivated: index => head.screen.filters.mailbox = index
        }
    ]

    SearchField {
        id: search
        objectName: "librarySearch"
        implicitWidth: head.narrow ? 240 : 320
        placeholderText: "搜索主题、发件人、正文、附件名"
        busy: head.screen.searching
        text: head.screen.query
        onTextChanged: head.screen.query = text
        onListRequested: head.listRequested()
        onLeaving: head.listRequested()
    }
}
