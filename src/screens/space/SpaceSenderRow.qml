// One sender with a tick.
import QtQuick
import Corvane

ListRow {
    id: row

    required property string name
    required property string address
    required property string count
    required property string size
    required property double share
    required property bool ticked
    required property string spokenName
    required selected
    property int margin: Theme.margin
    property bool narrow: false

    signal tickPressed

    implicitHeight: 46
    separated: true
    Accessible.role: Accessible.ListItem
    Accessible.name: spokenName
    Accessible.checkable: true
    Accessible.checked: ticked
    Accessible.onToggleAction: tickPressed()

    TickBox {
        objectName: "senderBox"
        x: row.margin
        anchors.verticalCenter: parent.verticalCenter
        focusPolicy: Qt.NoFocus
        tick: row.ticked ? 1 : 0
        name: row.name
        onClicked: row.tickPressed()
    }
    AppText {
        x: row.margin + 28
        y: row.address.length > 0 ? 4 : 13
        width: countLabel.x - x - 12
        text: row.name
        Accessible.ignored: true
    }
    AppText {
        x: row.margin + 28
        y: 24
        width: countLabel.x - x - 12
        visible: text.length > 0
        text: row.address
        role: AppText.Note
        elide: Text.ElideMiddle
        color: row.captionColor
        Accessible.ignored: true
    }
    AppText {
        id: countLabel
        x: (row.narrow ? sizeLabel.x : bar.x) - 12 - width
        anchors.verticalCenter: parent.verticalCenter
        width: 68
        horizontalAlignment: Text.AlignRight
        text: row.count
        color: Theme.text2
        Accessible.ignored: true
    }
    SizeBar {
        id: bar
        x: sizeLabel.x - 12 - width
        anchors.verticalCenter: parent.verticalCenter
        width: 96
        visible: !row.narrow
        fraction: row.share
    }
    AppText {
        id: sizeLabel
        x: row.width - row.margin - width
        anchors.verticalCenter: parent.verticalCenter
        width: 70
        horizontalAlignment: Text.AlignRight
        text: row.size
        Accessible.ignored: true
    }
}
