// The way back for an archive whose index is lost while its mail is there.
import QtQuick
import Corvane

Banner {
    id: banner

    required property RebuildNotice notice

    objectName: "rebuildBanner"
    visible: notice.isShown
    kind: notice.kind
    headline: notice.title
    lines: [notice.text]

    AppButton {
        objectName: "rebuildButton"
        visible: banner.notice.canStart
        text: "重建索引"
        onClicked: banner.notice.start()
    }
    AppButton {
        objectName: "cancelRebuildButton"
        visible: banner.notice.isRunning
        text: "取消"
        onClicked: banner.notice.cancel()
    }
}
