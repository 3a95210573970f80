// The files that hold the open message, on demand.
pragma ComponentBehavior: Bound

import QtQuick
import Corvane

Column {
    id: section

    required property MessageDetail detail
    property bool open: false

    PlainButton {
        x: -horizontalPadding
        implicitHeight: Theme.minimumTarget
        symbol: section.open ? "chevron-down" : "chevron-right"
        symbolSize: 14
        text: section.detail.shown.files.length + " 个邮件文件"
        labelColor: Theme.text3
        symbolColor: Theme.text3
        help: section.open ? "收起文件路径" : "显示文件路径"
        onClicked: section.open = !section.open
    }
    Repeater {
        model: section.open ? section.detail.shown.files : []
        delegate: AppText {
            required property string modelData
            width: section.width
            text: modelData
            role: AppText.Note
            color: Theme.text3
            elide: Text.ElideMiddle
        }
    }
}
