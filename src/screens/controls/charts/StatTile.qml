// One figure with its caption above and a line below. Tiles stand in a row and are parted by lines; the first has none.
import QtQuick
import QtQuick.Layouts
import Corvane

Item {
    id: tile

    property string caption: ""
    property string figure: ""
    property string line: ""
    // As of Chip.
    property string kind: ""
    property bool first: false
    property int figureRole: AppText.Title

    implicitWidth: column.implicitWidth + (first ? 0 : 17)
    implicitHeight: column.implicitHeight
    Accessible.role: Accessible.StaticText
    Accessible.name: caption + "，" + figure + (line.length > 0 ? "，" + line : "")

    Rectangle {
        visible: !tile.first
        width: Theme.hairline
        height: parent.height
        color: Theme.line
    }
    ColumnLayout {
        id: column
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.leftMargin: tile.first ? 0 : 17
        spacing: 0

        AppText {
            Layout.fillWidth: true
            text: tile.caption
            role: AppText.Note
            color: Theme.text3
            Accessible.ignored: true
        }
        AppText {
            Layout.fillWidth: true
            text: tile.figure
            role: tile.figureRole
            color: tile.kind === "" ? Theme.text1 : Theme.toneText(tile.kind)
            Accessible.ignored: true
        }
        AppText {
            Layout.fillWidth: true
            visible: text.length > 0
            text: tile.line
            role: AppText.Note
            color: Theme.text2
            Accessible.ignored: true
        }
    }
}
