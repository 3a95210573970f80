// What one account has on this machine and what only its server has, with a bar beside those of the others.
pragma ComponentBehavior: Bound

import QtQuick
import Corvane

ListRow {
    id: row

    required property string title
    required property string series
    required property string localText
    required property string localSize
    required property string cloudText
    required property string cloudSize
    required property double share
    required property double localShare
    required property bool hasCloud
    required property bool chosen
    required property string spokenName
    property int margin: Theme.margin
    property bool narrow: false
    readonly property int inner: margin + 18
    readonly property real barRoom: width - inner - 16

    implicitHeight: 105
    selected: chosen
    Accessible.role: Accessible.ListItem
    Accessible.name: spokenName
    Accessible.selectable: true
    Accessible.selected: chosen
    Accessible.onPressAction: clicked(Qt.NoModifier)

    component Fact: Item {
        id: fact

        property string text: ""
        property string note: ""
        property string size: ""
        property bool strong: false

        x: row.inner
        width: row.width - x - 16
        height: Theme.bodyLine

        AppText {
            id: factLabel
            text: fact.text
            color: fact.strong ? Theme.text1 : row.captionColor
            Accessible.ignored: true
        }
        AppText {
            anchors.left: factLabel.right
            anchors.leftMargin: 8
            anchors.right: sizeLabel.left
            anchors.rightMargin: 8
            y: 1
            visible: !row.narrow
            text: fact.note
            role: AppText.Note
            color: row.captionColor
            Accessible.ignored: true
        }
        AppText {
            id: sizeLabel
            anchors.right: parent.right
            text: fact.size
            font.weight: fact.strong ? Theme.strong : Theme.regular
            color: fact.strong ? Theme.text1 : row.captionColor
            Accessible.ignored: true
        }
    }

    Rectangle {
        width: parent.width
        height: Theme.hairline
        color: Theme.line
    }
    Swatch {
        x: row.margin
        y: 17
        series: row.series
    }
    AppText {
        x: row.inner
        y: 12
        width: row.width - x - 40
        text: row.title
        elide: Text.ElideMiddle
        font.weight: Theme.medium
        Accessible.ignored: true
    }
    Symbol {
        anchors.right: parent.right
        anchors.rightMargin: 16
        y: 14
        size: 16
        name: "chevron-right"
        color: Theme.text3
    }
    Fact {
        y: 38
        text: row.localText
        note: "只归档、只释放这部分"
        size: row.localSize
        strong: true
    }
    Fact {
        y: 60
        text: row.cloudText
        note: "仅在服务器 · 不占本机 · 不处理"
        size: row.cloudSize
    }
    Rectangle {
        id: localBar
        x: row.inner
        y: 87
        width: Math.max(2, Math.round(row.barRoom * row.share * row.localShare))
        height: Theme.sizeBarHeight
        radius: Theme.radiusBar
        color: Theme.bar
    }
    Rectangle {
        anchors.left: localBar.right
        anchors.leftMargin: 1
        y: 87
        visible: row.hasCloud
        width: Math.max(2, Math.round(row.barRoom * row.share * (1 - row.localShare)))
        height: Theme.sizeBarHeight
        radius: Theme.radiusBar
        color: Theme.seriesServerOnly
        border.color: Theme.seriesServerOnlyLine
    }
}
