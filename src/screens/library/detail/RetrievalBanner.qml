// A mail that is being brought back from a cloud: how long that has taken, and the way out of it.
import QtQuick
import Corvane

Banner {
    id: banner

    property bool running: false
    property int seconds: 0

    signal cancelled

    onRunningChanged: seconds = 0

    visible: running
    symbol: "cloud-download"
    headline: "正在从云端取回这封邮件"
    lines: ["取回后会自动打开，最多等两分钟。", "已经等了 " + seconds + " 秒。"]
    footer: [
        ProgressTrack {
            width: parent.width
            indeterminate: true
            name: banner.headline
        }
    ]

    AppButton {
        objectName: "cancelRetrieval"
        text: "取消"
        onClicked: banner.cancelled()
    }
    Timer {
        running: banner.running
        interval: 1000
        repeat: true
        onTriggered: ++banner.seconds
    }
}
