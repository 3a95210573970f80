// The one window of the program. The entry places and shows it.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Window
import Corvane

Window {
    id: root

    required property WindowModel app
    property bool endsForGood: false
    // The question couldn't be shown: the run is stopped as if it had been answered so.
    property bool endAfterRun: false
    // Asked here so that it watches the keys from the first one on.
    readonly property bool keyboardInUse: KeyboardFocus.inUse

    title: app.sampleStore.open ? "Corvane（示例邮件）" : "Corvane"
    width: Theme.windowWidth
    height: Theme.windowHeight
    minimumWidth: Theme.windowMinimumWidth
    minimumHeight: Theme.windowMinimumHeight
    color: Theme.surface

    onClosing: close => {
        if (app.archiving && !endsForGood) {
            close.accepted = false;
            const asked = question.made() as CloseQuestion;
            if (asked)
                asked.open();
            else
                endAfterRun = true;
        }
    }

    ContentView {
        anchors.fill: parent
        focus: true
        app: root.app
    }
    OnDemand {
        id: question
        source: Qt.resolvedUrl("CloseQuestion.qml")
        properties: ({ app: root.app })
    }
    onEndAfterRunChanged: app.stopArchiving()

    Connections {
        target: root.app
        function onStopped() {
            if (!root.endAfterRun)
                return;
            root.endsForGood = true;
            root.close();
        }
    }
    Connections {
        target: question.item
        function onDone() {
            root.endsForGood = true;
            root.close();
        }
    }
    Shortcut {
        // Also over a sheet, which holds up the keys of the screens.
        context: Qt.ApplicationShortcut
        sequences: [StandardKey.Quit] // qmllint disable unqualified
        onActivated: root.close()
    }
}
