// The line of the system's settings that the user looks for, drawn and not a control.
import QtQuick
import QtQuick.Layouts
import Corvane

Rectangle {
    implicitHeight: 90
    radius: Theme.radiusLarge
    color: Theme.surface
    border.color: Theme.line
    Accessible.role: Accessible.Graphic
    Accessible.name: "系统设置，隐私与安全性，完全磁盘访问权限，Corvane 的开关"

    Rectangle {
        x: 1
        y: 1
        width: parent.width - 2
        height: 36
        radius: Theme.radiusLarge - 1
        color: Theme.page

        Rectangle {
            anchors.bottom: parent.bottom
            width: parent.width
            height: parent.radius
            color: parent.color
        }
        Row {
            x: 15
            height: parent.height
            spacing: 12

            Repeater {
                model: ["系统设置", "", "隐私与安全性", "", "完全磁盘访问权限"]
                delegate: Item {
                    id: step
                    required property int index
                    required property string modelData
                    width: modelData.length > 0 ? words.implicitWidth : 14
                    height: parent.height

                    AppText {
                        id: words
                        anchors.verticalCenter: parent.verticalCenter
                        text: step.modelData
                        color: step.index === 4 ? Theme.text1 : Theme.text3
                        font.weight: step.index === 4 ? Theme.medium : Theme.regular
                        Accessible.ignored: true
                    }
                    Symbol {
                        anchors.verticalCenter: parent.verticalCenter
                        visible: step.modelData.length === 0
                        size: 14
                        name: "chevron-right"
                        color: Theme.text3
                    }
                }
            }
        }
    }
    Rectangle {
        y: 37
        x: 1
        width: parent.width - 2
        height: Theme.hairline
        color: Theme.line
    }
    RowLayout {
        x: 16
        y: 38
        width: parent.width - 32
        height: 51
        spacing: 12

        Rectangle {
            implicitWidth: 28
            implicitHeight: 28
            radius: Theme.radiusSmall
            color: Theme.accentFill

            Symbol {
                anchors.centerIn: parent
                size: 18
                name: "archive"
                color: Theme.textOnAccent
            }
        }
        AppText {
            Layout.fillWidth: true
            text: "Corvane"
            font.weight: Theme.medium
            Accessible.ignored: true
        }
        Rectangle {
            implicitWidth: 34
            implicitHeight: 20
            radius: 10
            color: Theme.accentFill

            Rectangle {
                x: 16
                y: 2
                width: 16
                height: 16
                radius: 8
                color: Theme.textOnAccent
            }
        }
    }
}
