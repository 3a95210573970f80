// What an action couldn't do, at the foot of a screen; goes by itself.
import QtQuick
import Corvane

Rectangle {
    id: notice

    // Over the lower edge of which it stands.
    required property Item area

    function show(text: string) {
        label.text = text;
        visible = true;
        timer.restart();
    }

    objectName: "notice"
    anchors.horizontalCenter: area.horizontalCenter
    anchors.bottom: area.bottom
    anchors.bottomMargin: Theme.margin
    width: label.implicitWidth + 32
    height: 36
    visible: false
    radius: Theme.radiusLarge
    color: Theme.sheet
    border.color: Theme.lineStrong
    Accessible.role: Accessible.AlertMessage
    Accessible.name: label.text

    AppText {
        id: label
        anchors.centerIn: parent
        Accessible.ignored: true
    }
    Timer {
        id: timer
        interval: 6000
        onTriggered: notice.visible = false
    }
}
