// One message that may be archived.
import QtQuick
import Corvane

ListRow {
    id: row

    required property int index
    required property string subject
    required property string sender
    required property string dateText
    required property string sizeText
    // Why it isn't archived yet, where that is known.
    required property string trouble
    required property string troubleTone
    required property bool ticked
    required selected
    required property ArchiveCandidatesModel model

    signal tickPressed(int modifiers)

    Accessible.role: Accessible.ListItem
    Accessible.name: model.spokenCandidate(index)
    Accessible.checkable: true
    Accessible.checked: ticked
    Accessible.onToggleAction: tickPressed(Qt.NoModifier)

    TickBox {
        id: box
        objectName: "candidateBox" + row.index
        x: 11
        anchors.verticalCenter: parent.verticalCenter
        focusPolicy: Qt.NoFocus
        tick: row.ticked ? 1 : 0
        name: row.subject

        // The button's own signal has no modifiers.
        MouseArea {
            anchors.centerIn: parent
            width: Theme.minimumTarget
            height: Theme.minimumTarget
            onClicked: event => row.tickPressed(event.modifiers)
        }
    }
    AppText {
        id: subjectLabel
        readonly property real room: parent.width - x - 347
        x: 39
        anchors.verticalCenter: parent.verticalCenter
        width: Math.min(implicitWidth, room - (reason.visible ? reason.width + Theme.section : 0))
        text: row.subject
        Accessible.ignored: true
    }
    AppText {
        id: reason
        objectName: "candidateReason" + row.index
        anchors.left: subjectLabel.right
        anchors.leftMargin: Theme.section
        anchors.verticalCenter: parent.verticalCenter
        width: Math.min(implicitWidth, subjectLabel.room / 2)
        visible: text.length > 0
        text: row.trouble
        role: AppText.Note
        color: row.troubleTone.length > 0 ? Theme.toneText(row.troubleTone) : Theme.text2
        Accessible.ignored: true
    }
    AppText {
        anchors.right: parent.right
        anchors.rightMargin: 231
        anchors.verticalCenter: parent.verticalCenter
        width: 104
        text: row.sender
        elide: row.sender.indexOf("@") > 0 ? Text.ElideMiddle : Text.ElideRight
        // The name alone doesn't tell who it is.
        wholeText: explained ? row.model.wholeSender(row.index) : text
        color: Theme.text2
        Accessible.ignored: true
    }
    AppText {
        anchors.right: parent.right
        anchors.rightMargin: 95
        anchors.verticalCenter: parent.verticalCenter
        text: row.dateText
        color: Theme.text2
        Accessible.ignored: true
    }
    AppText {
        anchors.right: parent.right
        anchors.rightMargin: 15
        anchors.verticalCenter: parent.verticalCenter
        text: row.sizeText
        Accessible.ignored: true
    }
}
