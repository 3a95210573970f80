// What the cells of the years mean, at the foot of the overview.
pragma ComponentBehavior: Bound

import QtQuick
import Corvane

Rectangle {
    id: legend

    property int margin: Theme.margin

    implicitHeight: 40
    color: Theme.page

    component Entry: Row {
        id: entry

        property alias kind: cell.kind
        property alias symbol: cell.symbol
        property alias text: label.text

        spacing: 6

        YearCell {
            id: cell
            anchors.verticalCenter: parent.verticalCenter
            width: 20
            height: 16
        }
        AppText {
            id: label
            role: AppText.Note
            color: Theme.text2
        }
    }

    Rectangle {
        width: parent.width
        height: Theme.hairline
        color: Theme.line
    }
    Row {
        anchors.verticalCenter: parent.verticalCenter
        x: legend.margin
        spacing: 20

        Entry {
            kind: "cleanable"
            symbol: "check"
            text: "可清理"
        }
        Entry {
            kind: "awaiting"
            symbol: "search"
            text: "待核对"
        }
        Entry {
            kind: "incomplete"
            symbol: "triangle-alert"
            text: "还有未归档"
        }
        Entry {
            kind: "server"
            symbol: "cloud"
            text: "还有未归档（含服务器）"
        }
        Entry {
            kind: "pending"
            symbol: "circle-question-mark"
            text: "待确认"
        }
        Entry {
            kind: "completed"
            symbol: "minus"
            text: "已全部删除"
        }
    }
}
