// What stands in the place of the library while it has nothing to list.
import QtQuick
import Corvane

FocusScope {
    id: place

    required property LibraryScreen screen
    readonly property bool isEmpty: screen.state === LibraryScreen.Empty

    signal archiveRequested

    EmptyState {
        objectName: "libraryState"
        anchors.centerIn: parent
        width: parent.width - 2 * Theme.margin
        focus: true
        symbol: "library"
        title: place.isEmpty ? "归档库还是空的" : "正在读取归档库…"
        line: place.isEmpty ? "在“归档邮件”里选择邮件并归档后，这里会列出可随时查看的 .eml。" : ""
        buttonText: place.isEmpty ? "去归档邮件" : ""
        onActivated: place.archiveRequested()
    }
}
