// A question with two answers. With `keepsOpen` the first answer leaves the sheet open for its owner to close; while
// `busy` there is nothing to answer.
import QtQuick
import QtQuick.Layouts
import Corvane

Sheet {
    id: sheet

    property string line: ""
    property string acceptText: "好"
    property string rejectText: "取消"
    property bool keepsOpen: false
    property bool busy: false
    property bool answered: false
    // What Return does, and what has the keyboard at first, is the second answer: the first one can't be taken back.
    property bool prefersReject: false

    function accept() {
        answered = true;
        if (!keepsOpen)
            close();
        accepted();
    }

    signal accepted
    signal rejected

    wantedWidth: 480
    primary: main
    onAboutToShow: answered = false
    onClosed: {
        if (!answered)
            rejected();
    }

    AppText {
        Layout.fillWidth: true
        text: sheet.line
        wrapMode: Text.Wrap
        color: Theme.text2
    }
    barItems: [
        AppButton {
            objectName: sheet.prefersReject ? "acceptButton" : "rejectButton"
            visible: text.length > 0
            enabled: !sheet.busy
            text: sheet.prefersReject ? sheet.acceptText : sheet.rejectText
            implicitHeight: Theme.controlHeightPrimary
            horizontalPadding: 20
            onClicked: sheet.prefersReject ? sheet.accept() : sheet.close()
        },
        PrimaryButton {
            id: main
            objectName: sheet.prefersReject ? "rejectButton" : "acceptButton"
            enabled: !sheet.busy
            text: sheet.prefersReject ? sheet.rejectText : sheet.acceptText
            onClicked: sheet.prefersReject ? sheet.close() : sheet.accept()
        }
    ]
}
