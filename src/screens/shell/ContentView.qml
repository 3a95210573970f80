// The frame of the window: the sidebar at the left, the chosen screen beside it. A screen is made when it is first
// looked at, or ahead of that in the moments after the start, and kept from then on.
import QtQuick
import QtQuick.Window
import Corvane

FocusScope {
    id: view

    required property WindowModel app
    property string place: "home"
    property ScreenPage currentPage: null
    // The screen of each place, by the keys of SidebarModel.
    readonly property var pages: ({ home: homePage, archived: archivedPage, library: libraryPage, mails: mailsPage,
                                    space: spacePage })
    // How many of the screens were made ahead.
    property int madeAhead: 0
    readonly property bool narrow: width < Theme.narrowBelow
    readonly property bool low: height < Theme.lowBelow

    function go(key: string) {
        if (key.length > 0)
            place = key;
    }
    // Into the screen, also where it is the one that is shown: the key says where one wants to work.
    function goByKey(key: string) {
        go(key);
        if (key.length > 0)
            Qt.callLater(enterPage); // qmllint disable
    }
    function enterPage() {
        KeyboardFocus.enter(currentPage);
    }
    // What had the keyboard is no longer to be seen, with its screen or by itself.
    function settleKeyboard() {
        if (currentPage && !OpenSheets.shown && !KeyboardFocus.isHeldIn(view))
            enterPage();
    }
    function find() {
        const field = currentPage?.searchField as SearchField;
        if (!field)
            return;
        field.forceActiveFocus(Qt.ShortcutFocusReason);
        field.selectAll();
    }

    onCurrentPageChanged: Qt.callLater(settleKeyboard) // qmllint disable
    Keys.onEscapePressed: if (currentPage) currentPage.escaped()

    Timer {
        interval: 1000
        repeat: true
        running: view.madeAhead < view.app.sidebar.rowCount()
        onTriggered: ++view.madeAhead
    }
    Connections {
        target: view.Window.activeFocusItem
        function onVisibleChanged() {
            Qt.callLater(view.settleKeyboard); // qmllint disable
        }
    }
    // Nothing has it: a part was destroyed with the keyboard, or a popup closed.
    function settleLostKeyboard() {
        if (Window.activeFocusItem === Window.contentItem)
            settleKeyboard();
    }
    Window.onActiveFocusItemChanged: Qt.callLater(settleLostKeyboard) // qmllint disable
    Connections {
        target: view.app.archive
        function onPlaceRequested(key: string) {
            view.goByKey(key);
        }
    }
    Connections {
        target: view.app.home
        function onTroubledRequested() {
            view.goByKey("mails");
        }
        function onLibraryRequested() {
            view.goByKey("library");
        }
    }
    Connections {
        target: OpenSheets
        function onShownChanged() {
            Qt.callLater(view.settleKeyboard); // qmllint disable
        }
    }
    Sidebar {
        id: sidebar
        width: view.narrow ? Theme.sidebarWidthNarrow : Theme.sidebarWidth
        height: parent.height
        app: view.app
        place: view.place
        low: view.low
        onPlaceChosen: key => view.go(key)
        onPlacesRequested: places.show()
        onImportRequested: settings.importSettings()
        onExportRequested: settings.exportSettings()
    }
    PlacesSheet {
        id: places
        screen: view.app.places
    }
    SettingsSheets {
        id: settings
        travel: view.app.settings
    }
    CollectionSheet {
        collection: view.app.collection
    }
    Connections {
        target: view.app
        function onRequested(command: int) {
            if (command === WindowModel.Places)
                places.show();
            else if (command === WindowModel.ExportSettings)
                settings.exportSettings();
            else
                settings.importSettings();
        }
    }
    NoticeBar {
        id: notices
        anchors.left: sidebar.right
        anchors.right: parent.right
        y: implicitHeight > 0 ? 16 : 0
        app: view.app
        margin: view.narrow ? Theme.marginNarrow : Theme.margin
    }
    FocusScope {
        id: pages
        anchors.left: sidebar.right
        anchors.right: parent.right
        anchors.top: notices.bottom
        anchors.bottom: parent.bottom
        focus: true

        // A Loader of Qt 6.4 takes no bound components.
        // qmllint disable unqualified
        Repeater {
            model: view.app.sidebar
            delegate: Loader {
                id: holder
                required property int index
                required property string key
                readonly property bool current: view.place === key

                anchors.fill: parent
                active: current || item !== null || index < view.madeAhead
                asynchronous: !current
                visible: current
                focus: current
                sourceComponent: view.pages[key]
                onCurrentChanged: showPage()
                onLoaded: showPage()

                function showPage() {
                    if (!current || !item)
                        return;
                    view.currentPage = item as ScreenPage;
                    view.currentPage.shown();
                }
            }
        }
    }

    Component {
        id: homePage
        HomePage {
            app: view.app
        }
    }
    Component {
        id: archivedPage
        ArchivedPage {
            app: view.app
            onHomeRequested: view.goByKey("home")
        }
    }
    Component {
        id: spacePage
        SpacePage {
            app: view.app
            onHomeRequested: view.goByKey("home")
        }
    }
    Component {
        id: libraryPage
        LibraryPage {
            app: view.app
            onArchiveRequested: view.goByKey("home")
        }
    }
    Component {
        id: mailsPage
        MailListPage {
            app: view.app
        }
    }

    Repeater {
        model: 5
        delegate: Item {
            id: key
            required property int index
            Shortcut {
                sequence: "Ctrl+" + (key.index + 1)
                onActivated: view.goByKey(view.app.sidebar.keyOfNumber(key.index + 1))
            }
        }
    }
    Shortcut {
        sequences: [StandardKey.Find]
        onActivated: view.find()
    }
    Shortcut {
        sequences: ["Ctrl+R", "F5"]
        onActivated: if (view.currentPage) view.currentPage.refreshRequested()
    }
}
