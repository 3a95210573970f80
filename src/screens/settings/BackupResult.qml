// What came of an export or import of the settings.
import QtQuick
import QtQuick.Layouts
import Corvane

Sheet {
    id: sheet

    required property SettingsTravel travel
    readonly property bool wanted: travel.step === SettingsTravel.Result

    signal anotherRequested

    // It stays while the sheet closes.
    property string said: ""

    onWantedChanged: {
        if (wanted) {
            said = travel.result;
            open();
        } else {
            close();
        }
    }
    onClosed: {
        if (wanted)
            travel.close();
    }

    objectName: "settingsResult"
    wantedWidth: 560
    spokenTitle: said
    primary: done

    RowLayout {
        Layout.fillWidth: true
        Layout.topMargin: 24
        spacing: 12

        Symbol {
            Layout.alignment: Qt.AlignTop
            size: 20
            name: sheet.travel.hasFailed ? "octagon-x" : "circle-check"
            color: sheet.travel.hasFailed ? Theme.danger : Theme.safe
        }
        AppText {
            objectName: "settingsResultText"
            Layout.fillWidth: true
            text: sheet.said
            wrapMode: Text.Wrap
        }
    }
    barItems: [
        AppButton {
            objectName: "showExported"
            implicitHeight: Theme.controlHeightPrimary
            horizontalPadding: 20
            visible: sheet.travel.isExported
            text: "打开文件夹"
            onClicked: sheet.travel.showExported()
        },
        AppButton {
            objectName: "chooseAnother"
            implicitHeight: Theme.controlHeightPrimary
            horizontalPadding: 20
            visible: sheet.travel.canChooseAnother
            text: "选择别的文件…"
            onClicked: {
                sheet.travel.close();
                sheet.anotherRequested();
            }
        },
        PrimaryButton {
            id: done
            objectName: "settingsDone"
            text: "好"
            onClicked: sheet.travel.close()
        }
    ]
}
