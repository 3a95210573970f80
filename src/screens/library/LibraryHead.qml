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
        FilterMenu {
            objectName: "locationFilter"
            narrow: head.narrow
            symbol: "layers"
            name: "归档位置"
            model: head.screen.filters.locations
            chosen: head.screen.filters.location
            onActivated: index => head.screen.filters.location = index
        },
        FilterMenu {
            objectName: "accountFilter"
            narrow: head.narrow
            symbol: "at-sign"
            name: "邮箱"
            model: head.screen.filters.accounts
            chosen: head.screen.filters.account
            onActivated: index => {
                head.screen.filters.account = index;
                // The last one isn't a filter.
                currentIndex = Qt.binding(() => head.screen.filters.account);
            }
        },
        FilterMenu {
            objectName: "mailboxFilter"
            narrow: head.narrow
            symbol: "folder"
            name: "文件夹"
            model: head.screen.filters.mailboxes
            chosen: head.screen.filters.mailbox
            onActivated: index => head.screen.filters.mailbox = index
        }
    ]

    SearchField {
        id: search
        objectName: "librarySearch"
        implicitWidth: head.narrow ? 240 : 320
        placeholderText: "搜索主题、发件人、正文、附件名"
        busy: head.screen.search.busy
        text: head.screen.search.query
        onTextChanged: head.screen.search.query = text
        onListRequested: head.listRequested()
        onLeaving: head.listRequested()
    }
}
