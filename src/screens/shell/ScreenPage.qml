// Base of every screen: what the frame of the window knows and asks of it.
import QtQuick
import QtQuick.Window
import Corvane

FocusScope {
    id: page

    required property WindowModel app

    // Below 1120 wide and 660 high the layout gives way.
    readonly property bool narrow: Window.width > 0 && Window.width < Theme.narrowBelow
    readonly property bool low: Window.height > 0 && Window.height < Theme.lowBelow
    readonly property int margin: narrow ? Theme.marginNarrow : Theme.margin

    // What the find key goes to; null where there is nothing to search.
    property Item searchField: null

    // The screen means something else by the refresh key than new data from Mail.
    property bool hasOwnRefresh: false

    // Somebody looks at the screen, now or again.
    signal shown
    // The refresh key was pressed.
    signal refreshRequested
    // Escape came and nothing in the screen took it.
    signal escaped
    // The way leads to another place, by its key in SidebarModel.
    signal placeRequested(string key)

    focus: true
    onRefreshRequested: if (!hasOwnRefresh) app.refreshAllMailData()

    Rectangle {
        anchors.fill: parent
        color: Theme.surface
    }
}
