// One account of the archived overview: what it frees, what stands against the rest, and a cell a year.
pragma ComponentBehavior: Bound

import QtQuick
import Corvane

ListRow {
    id: row

    required property string title
    required property var facts
    required property string size
    required property string count
    required property bool frees
    required property var cells
    required property string spokenName
    required selected
    property int margin: Theme.margin
    // The originals were looked up long ago.
    property bool muted: false

    implicitHeight: 78 + cellFlow.implicitHeight
    Accessible.role: Accessible.ListItem
    Accessible.name: spokenName
    Accessible.selectable: true
    Accessible.selected: selected
    Accessible.onPressAction: clicked(Qt.NoModifier)

    Rectangle {
        width: parent.width
        height: Theme.hairline
        color: Theme.line
    }
    AppText {
        x: row.margin
        y: 12
        width: figure.x - x - 16
        text: row.title
        elide: Text.ElideMiddle
        font.weight: Theme.medium
        Accessible.ignored: true
    }
    Row {
        x: row.margin
        y: 34
        width: figure.x - x - 16
        height: Theme.noteLine
        spacing: 20
        clip: true

        Repeater {
            model: row.facts
            delegate: Row {
                id: fact
                required property var modelData
                spacing: 4

                Symbol {
                    y: 2
                    size: 14
                    name: fact.modelData.symbol
                    color: Theme.text2
                }
                AppText {
                    text: fact.modelData.text
                    role: AppText.Note
                    color: Theme.text2
                    Accessible.ignored: true
                }
            }
        }
    }
    Flow {
        id: cellFlow
        x: row.margin
        y: 62
        width: row.width - 2 * row.margin
        spacing: 3

        Repeater {
            model: row.cells
            delegate: YearCell {
                required property var modelData
                label: modelData.label
                kind: modelData.key
                symbol: modelData.symbol ?? ""
                help: modelData.text ?? ""
                muted: row.muted
            }
        }
    }
    Item {
        id: figure
        anchors.right: parent.right
        anchors.rightMargin: row.margin + 34
        y: 12
        width: 136
        height: 42

        AppText {
            anchors.right: sizeLabel.left
            anchors.rightMargin: 8
            anchors.baseline: sizeLabel.baseline
            text: "可释放"
            color: Theme.text2
            Accessible.ignored: true
        }
        AppText {
            id: sizeLabel
            anchors.right: parent.right
            width: Math.max(76, implicitWidth)
            horizontalAlignment: Text.AlignRight
            text: row.size
            role: AppText.Heading
            color: !row.frees ? Theme.text3 : row.muted ? Theme.text1 : Theme.safe
            Accessible.ignored: true
        }
        AppText {
            anchors.right: parent.right
            y: 22
            text: row.count
            role: AppText.Note
            color: Theme.text2
            Accessible.ignored: true
        }
    }
    Symbol {
        anchors.right: parent.right
        anchors.rightMargin: row.margin
        y: 22
        size: 18
        name: "chevron-right"
        color: Theme.text3
    }
}
