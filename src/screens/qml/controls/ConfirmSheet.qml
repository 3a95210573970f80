// A question with two answers.
import QtQuick
import QtQuick.Layouts
import Corvane

Sheet {
    id: sheet

    property string line: ""
    property string acceptText: "好"
    property string rejectText: "取消"

    signal accepted
    signal rejected

    wantedWidth: 460
    primary: accept
    onClosed: if (!answered) rejected()
    onAboutToShow: answered = false

    property bool answered: false

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
            text: sheet.rejectText
            implicitHeight: Theme.controlHeightPrimary
            horizontalPadding: 20
            onClicked: sheet.close()
        },
        PrimaryButton {
            id: accept
            objectName: "acceptButton"
            text: sheet.acceptText
            onClicked: {
                sheet.answered = true;
                sheet.close();
                sheet.accepted();
            }
        }
    ]
}
