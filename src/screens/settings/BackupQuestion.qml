// Asks before settings of a backup are taken over: the offer of a fresh start, and the question before an import, which
// replaces rules and so begins at "取消".
import QtQuick
import QtQuick.Layouts
import Corvane

Sheet {
    id: sheet

    required property SettingsTravel travel
    property bool isOffer: false
    readonly property bool wanted: travel.step === (isOffer ? SettingsTravel.Offer : SettingsTravel.Question)
    // An offer doesn't come over what somebody is at.
    readonly property bool canOpen: !isOffer || visible || OpenSheets.shown === null
    readonly property bool opens: wanted && canOpen
    // They stay while the sheet closes.
    property var facts: []
    property string place: ""

    onOpensChanged: {
        if (opens) {
            facts = travel.summary;
            place = travel.note;
            open();
        } else if (!wanted) {
            close();
        }
    }
    onClosed: {
        if (wanted)
            travel.close();
    }

    objectName: isOffer ? "settingsOffer" : "settingsQuestion"
    wantedWidth: 560
    bodyGap: isOffer ? 20 : 16
    title: isOffer ? "恢复 App 设置?(不是邮件)" : "导入配置备份"
    subtitle: isOffer ? "你的归档邮件已经载入好了。这份备份里只有 App 的设置——归档位置、默认目的地、账号合并规则,不含邮件。"
        + "要把这些设置也恢复到这台电脑吗?" : ""
    note: place
    primary: isOffer ? accept : reject

    Rectangle {
        Layout.fillWidth: true
        implicitHeight: factRows.height + 24
        radius: Theme.radiusLarge
        color: Theme.page
        border.color: Theme.line

        Column {
            id: factRows
            x: 17
            y: 12
            width: parent.width - 2 * x
            spacing: 2

            Repeater {
                model: sheet.facts
                delegate: Row {
                    id: fact
                    required property var modelData
                    width: factRows.width

                    AppText {
                        id: label
                        text: fact.modelData.label
                        color: Theme.text2
                    }
                    AppText {
                        width: parent.width - label.width
                        text: fact.modelData.value
                        elide: Text.ElideMiddle
                    }
                }
            }
        }
    }
    AppText {
        Layout.fillWidth: true
        Layout.topMargin: 16
        visible: !sheet.isOffer
        text: "位置清单会与现有合并，账号合并规则会被覆盖。不影响已归档的邮件本体。"
        wrapMode: Text.Wrap
        color: Theme.text2
    }
    barItems: [
        AppButton {
            id: reject
            objectName: sheet.isOffer ? "declineOffer" : "rejectSettings"
            implicitHeight: Theme.controlHeightPrimary
            horizontalPadding: 20
            text: sheet.isOffer ? "不恢复" : "取消"
            onClicked: sheet.travel.close()
        },
        PrimaryButton {
            id: accept
            objectName: sheet.isOffer ? "acceptOffer" : "acceptSettings"
            text: sheet.isOffer ? "恢复设置" : "导入"
            onClicked: sheet.travel.accept()
        }
    ]
}
