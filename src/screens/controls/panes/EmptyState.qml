// What stands where there is nothing to show: why, and the one thing to do about it. `steps` are those of StepList.
import QtQuick
import QtQuick.Layouts
import Corvane

FocusScope {
    id: empty

    property string symbol: "archive"
    property color symbolColor: Theme.text3
    property int symbolSize: 40
    // Beside another one that says more.
    property bool quiet: false
    property string title: ""
    property string line: ""
    property string buttonText: ""
    property string secondText: ""
    property var steps: []
    property alias button: primary

    signal activated
    signal secondActivated

    implicitWidth: column.implicitWidth
    implicitHeight: column.implicitHeight

    ColumnLayout {
        id: column
        anchors.centerIn: parent
        width: Math.min(parent.width, Theme.bodyMeasure)
        spacing: 0

        Symbol {
            Layout.alignment: Qt.AlignHCenter
            visible: empty.symbol.length > 0
            size: empty.symbolSize
            name: empty.symbol
            color: empty.symbolColor
        }
        AppText {
            Layout.fillWidth: true
            Layout.topMargin: empty.quiet ? 8 : 16
            text: empty.title
            role: empty.quiet ? AppText.Body : AppText.Title
            color: empty.quiet ? Theme.text3 : Theme.text1
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            maximumLineCount: 2
        }
        AppText {
            Layout.fillWidth: true
            Layout.topMargin: 8
            visible: text.length > 0
            text: empty.line
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            color: Theme.text2
        }
        RowLayout {
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 20
            visible: empty.buttonText.length > 0
            // The first one stands at the right, and is the first for the keyboard.
            layoutDirection: Qt.RightToLeft
            spacing: 12

            PrimaryButton {
                id: primary
                objectName: "emptyStateButton"
                focus: true
                text: empty.buttonText
                onClicked: empty.activated()
            }
            AppButton {
                visible: text.length > 0
                text: empty.secondText
                implicitHeight: Theme.controlHeightPrimary
                horizontalPadding: 20
                onClicked: empty.secondActivated()
            }
        }
        Line {
            Layout.fillWidth: true
            Layout.topMargin: 28
            Layout.bottomMargin: 24
            visible: empty.steps.length > 0
        }
        StepList {
            Layout.fillWidth: true
            visible: empty.steps.length > 0
            steps: empty.steps
        }
    }
}
