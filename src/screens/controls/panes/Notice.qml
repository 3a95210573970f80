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
    width: label.width + 32
    height: label.height + Theme.section
    visible: false
    radius: Theme.radiusLarge
    color: Theme.sheet
    border.color: Theme.lineStrong
    Accessible.role: Accessible.AlertMessage
    Accessible.name: label.text

    AppText {
        id: label
        anchors.centerIn: parent
        width: Math.min(implicitWidth, notice.area.width - 2 * Theme.margin - 32, Theme.messageMeasure)
        wrapMode: Text.Wrap
        Accessible.ignored: true
    }
    Timer {
        id: timer
        // Long enough to read it.
        interval: 5000 + 80 * label.text.length
        onTriggered: notice.visible = false
    }
}
