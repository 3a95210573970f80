// What a test of the screens stands in: the frame of the window with all its screens, made anew by `begin`, in a window
// of the usual size.
import QtQuick
import QtQuick.Templates as T
import QtQuick.Window
import Corvane

Item {
    id: root
    width: 1240
    height: 840

    default property alias tests: area.data
    readonly property Item overlay: T.Overlay.overlay
    readonly property alias view: holder.item
    property HomeScreen home
    property ArchiveScreen archive

    function begin(withDestination: bool) {
        beginWith(() => scenes.begin(withDestination));
    }
    function beginWith(makeScene: var) {
        KeyboardFocus.freshKeyPause = 0;
        holder.active = false;
        root.width = 1240;
        root.height = 840;
        makeScene();
        holder.active = true;
        home = scenes.app.home;
        archive = scenes.app.archive;
    }

    Loader {
        id: holder
        anchors.fill: parent
        active: false
        focus: true
        sourceComponent: ContentView {
            app: scenes.app
            focus: true
        }
    }
    Item {
        id: area
    }
}
