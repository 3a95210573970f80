// What stands in the place of the library while it has nothing to list.
import QtQuick
import Corvane

FocusScope {
    id: place

    required property LibraryScreen screen
    readonly property bool isEmpty: screen.state === LibraryScreen.Empty
    // Nothing is known of what lies there.
    readonly property bool isAway: isEmpty && screen.awayPlaces.length > 0

    signal archiveRequested

    EmptyState {
        objectName: "libraryState"
        anchors.centerIn: parent
        width: parent.width - 2 * Theme.margin
        focus: true
        symbol: place.isAway ? "unplug" : "library"
        title: place.isAway ? "归档位置没有连接" : place.isEmpty ? "归档库还是空的" : "正在读取归档库…"
        line: place.isAway ? "现在看不到这些位置里的邮件：" + place.screen.awayPlaces + "。连接后会列在这里。"
            : place.isEmpty ? "在“归档邮件”里选择邮件并归档后，这里会列出可随时查看的 .eml。" : ""
        buttonText: place.isEmpty && !place.isAway ? "去归档邮件" : ""
        onActivated: place.archiveRequested()
    }
}
