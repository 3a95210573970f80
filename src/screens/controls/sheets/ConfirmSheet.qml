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

    signal accepted
    signal rejected

    wantedWidth: 480
    primary: accept
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
            objectName: "rejectButton"
            visible: text.length > 0
            enabled: !sheet.busy
            text: sheet.rejectText
            implicitHeight: Theme.controlHeightPrimary
            horizontalPadding: 20
            onClicked: sheet.close()
        },
        PrimaryButton {
            id: accept
            objectName: "acceptButton"
            enabled: !sheet.busy
            text: sheet.acceptText
            onClicked: {
                sheet.answered = true;
                if (!sheet.keepsOpen)
                    sheet.close();
                sheet.accepted();
            }
        }
    ]
}
