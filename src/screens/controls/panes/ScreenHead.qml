// The head of a screen: its title, what it says below it, and its controls at the right.
import QtQuick
import QtQuick.Layouts
import Corvane

FocusGroup {
    id: head

    property string title: ""
    property string subtitle: ""
    property bool low: false
    property int margin: Theme.margin
    // Controls that stand right behind the title.
    property alias leading: leadingRow.data
    default property alias content: trailingRow.data

    implicitHeight: low ? Theme.headHeightLow + (subtitle.length > 0 ? Theme.half : 0) : Theme.headHeight

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: head.margin
        anchors.rightMargin: head.margin
        spacing: 16

        ColumnLayout {
            // What leads stands right behind the title.
            Layout.fillWidth: leadingRow.children.length === 0
            Layout.topMargin: head.subtitle.length > 0 ? 4 : 0
            spacing: 0

            AppText {
                Layout.fillWidth: true
                text: head.title
                role: AppText.Title
                Accessible.role: Accessible.Heading
            }
            AppText {
                Layout.fillWidth: true
                visible: text.length > 0
                text: head.subtitle
                color: Theme.text2
            }
        }
        RowLayout {
            id: leadingRow
            spacing: 12
        }
        Item {
            Layout.fillWidth: true
        }
        RowLayout {
            id: trailingRow
            Layout.topMargin: head.subtitle.length > 0 ? 8 : 0
            spacing: 12
        }
    }
}
