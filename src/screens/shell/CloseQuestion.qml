// Asked when the window is closed while an archive runs. A run is never cut off: it ends after the message at work,
// with its index saved, and only then the window goes.
import QtQuick
import Corvane

ConfirmSheet {
    id: question

    required property WindowModel app
    property bool stopping: false

    signal done

    objectName: "closeQuestion"
    urgent: true
    prefersReject: true
    title: stopping ? "正在停止归档…" : "归档还没有完成"
    line: stopping ? "写完当前这封邮件、保存好索引后就会退出。"
        : "可以停止归档再退出。已写好的邮件会保留，没有归档的下次可以继续。"
    acceptText: "停止并退出"
    rejectText: "继续归档"
    dismissable: !stopping
    keepsOpen: true
    busy: stopping
    onAccepted: {
        stopping = true;
        app.stopArchiving();
    }

    Connections {
        target: question.app
        function onStopped() {
            if (question.stopping)
                question.done();
        }
        function onArchivingChanged() {
            if (!question.app.archiving && !question.stopping)
                question.close();
        }
    }
}
