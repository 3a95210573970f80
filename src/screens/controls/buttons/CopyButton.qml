// A button that copies something, and says for a while that it did.
import QtQuick
import Corvane

AppButton {
    property string label: "拷贝清单"

    implicitHeight: Theme.controlHeightPane
    symbol: said.running ? "check" : "copy"
    symbolSize: 14
    // As wide as the other.
    text: said.running ? "已经拷贝" : label
    onClicked: said.restart()

    Timer {
        id: said
        interval: 2000
    }
}
