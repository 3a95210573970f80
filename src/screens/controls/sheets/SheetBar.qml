// The bar at the foot of a sheet: what is to be said at the left, the buttons at the right.
import QtQuick
import QtQuick.Layouts
import Corvane

Rectangle {
    id: bar

    property string note: ""
    property string noteLine: ""
    property color noteColor: Theme.text2
    property int noteLineElide: Text.ElideRight
    // As of Theme.toneText.
    property string kind: ""
    property alias items: buttons.data

    implicitHeight: 64
    // The page's colour would show square corners below the sheet's round ones.
    color: Theme.toneBackground(kind)
    radius: Theme.radiusSheet - 1

    Rectangle {
        width: parent.width
        height: parent.radius
        color: parent.color
    }
    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 24
        anchors.rightMargin: 24
        spacing: 12

        Symbol {
            visible: bar.kind === "safe"
            Layout.rightMargin: 4
            size: 24
            name: "shield-check"
            color: Theme.safe
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 0

            AppText {
                Layout.fillWidth: true
                text: bar.note
                visible: text.length > 0
                color: bar.noteColor
            }
            AppText {
                Layout.fillWidth: true
                text: bar.noteLine
                elide: bar.noteLineElide
                visible: text.length > 0
                role: AppText.Note
                color: Theme.text3
            }
        }
        RowLayout {
            id: buttons
            spacing: 12
        }
    }
}
