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
    // The screen of each place, by the keys of SidebarModel. Files, so that the first frame waits for the types of one
    // screen alone.
    readonly property var pages: ({ home: Qt.resolvedUrl("../home/HomePage.qml"),
                                    archived: Qt.resolvedUrl("../archived/ArchivedPage.qml"),
                                    library: Qt.resolvedUrl("../library/LibraryPage.qml"),
                                    mails: Qt.resolvedUrl("../mails/MailListPage.qml"),
                                    space: Qt.resolvedUrl("../space/SpacePage.qml") })
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
    function showPlaces() {
        (places.made() as PlacesSheet)?.show();
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
        onPlacesRequested: view.showPlaces()
        onImportRequested: settings.importSettings()
        onExportRequested: settings.exportSettings()
    }
    OnDemand {
        id: places
        source: Qt.resolvedUrl("../places/PlacesSheet.qml")
        properties: ({ screen: view.app.places })
    }
    SettingsSheets {
        id: settings
        travel: view.app.settings
    }
    OnDemand {
        source: Qt.resolvedUrl("../settings/collection/CollectionSheet.qml")
        properties: ({ collection: view.app.collection })
        wanted: view.app.collection.isOpen
    }
    Connections {
        target: view.app
        function onRequested(command: int) {
            if (command === WindowModel.Places)
                view.showPlaces();
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

        Repeater {
            model: view.app.sidebar
            delegate: Loader {
                id: holder
                required property int index
                required property string key
                readonly property bool current: view.place === key
                readonly property bool isAhead: index < view.madeAhead

                anchors.fill: parent
                visible: current
                focus: current
                onCurrentChanged: showPage()
                onIsAheadChanged: if (status === Loader.Null) make(true)
                onLoaded: {
                    (item as ScreenPage).placeRequested.connect(view.goByKey);
                    showPage();
                }
                Component.onCompleted: showPage()

                function make(ahead: bool) {
                    asynchronous = ahead;
                    setSource(view.pages[key], { app: view.app });
                }
                function showPage() {
                    if (!current)
                        return;
                    if (status === Loader.Ready) {
                        view.currentPage = item as ScreenPage;
                        view.currentPage.shown();
                        return;
                    }
                    // What was begun ahead is let go: to hurry it would lose its properties.
                    if (status === Loader.Loading)
                        source = "";
                    make(false);
                }
            }
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
