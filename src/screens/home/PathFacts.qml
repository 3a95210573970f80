// A path with what is known of it, line by line. Each of `facts` has a `caption` and a `text`; the first one is the
// trouble.
pragma ComponentBehavior: Bound

import QtQuick
import Corvane

Rectangle {
    id: box

    property string path: ""
    property string symbol: "folder"
    property var facts: []

    signal copyRequested

    implicitHeight: rows.implicitHeight + 2
    radius: Theme.radiusLarge
    color: Theme.surface
    border.color: Theme.line

    Column {
        id: rows
        x: 1
        y: 1
        width: parent.width - 2

        Rectangle {
            width: parent.width
            height: 40
            radius: Theme.radiusLarge - 1
            color: Theme.page

            Rectangle {
                anchors.bottom: parent.bottom
                width: parent.width
                height: parent.radius
                color: parent.color
            }
            Symbol {
                x: 16
                anchors.verticalCenter: parent.verticalCenter
                size: 18
                name: box.symbol
                color: Theme.text2
            }
            AppText {
                x: 42
                width: copyPath.x - x - 8
                anchors.verticalCenter: parent.verticalCenter
                text: box.path
                elide: Text.ElideMiddle
            }
            PlainButton {
                id: copyPath
                objectName: "copyPathButton"
                anchors.right: parent.right
                anchors.rightMargin: 9
                anchors.verticalCenter: parent.verticalCenter
                implicitHeight: Theme.minimumTarget
                symbol: "copy"
                symbolSize: 14
                text: "拷贝"
                help: "拷贝路径"
                onClicked: box.copyRequested()
            }
        }
        Repeater {
            model: box.facts
            delegate: Item {
                id: fact
                required property int index
                required property var modelData
                width: rows.width
                height: 36
                Accessible.role: Accessible.StaticText
                Accessible.name: modelData.caption + "，" + modelData.text

                Rectangle {
                    width: parent.width
                    height: Theme.hairline
                    color: Theme.line
                }
                AppText {
                    x: 16
                    anchors.verticalCenter: parent.verticalCenter
                    text: fact.modelData.caption
                    color: Theme.text2
                    Accessible.ignored: true
                }
                AppText {
                    x: 116
                    width: parent.width - x - 16
                    anchors.verticalCenter: parent.verticalCenter
                    text: fact.modelData.text
                    color: fact.index === 0 ? Theme.attention : Theme.text1
                    Accessible.ignored: true
                }
            }
        }
    }
}
