// The header of the mail: subject, people, date, size and where it lies.
import QtQuick
import Corvane

Column {
    id: head

    required property ArchivedMail mail
    readonly property int sideWidth: Math.max(dateLabel.implicitWidth, sizeLabel.implicitWidth,
        placeLabel.width + 24)

    spacing: 2

    AppText {
        objectName: "archivedSubject"
        width: parent.width
        bottomPadding: 5
        text: head.mail.subject.length > 0 ? head.mail.subject : "（无主题）"
        role: AppText.Title
        wrapMode: Text.Wrap
        maximumLineCount: 2
        Accessible.role: Accessible.Heading
    }
    Item {
        width: parent.width
        height: Math.max(fields.height, side.height)

        Column {
            id: fields
            width: parent.width - head.sideWidth - Theme.margin
            spacing: 2

            DetailField {
                width: parent.width
                name: "发件人"
                value: head.mail.sender
            }
            DetailField {
                width: parent.width
                name: "收件人"
                value: head.mail.recipients
            }
            DetailField {
                objectName: "archivedCc"
                width: parent.width
                name: "抄送"
                value: head.mail.ccRecipients
            }
        }
        Column {
            id: side
            anchors.right: parent.right
            spacing: 2

            AppText {
                id: dateLabel
                anchors.right: parent.right
                text: head.mail.dateText
                color: Theme.text2
            }
            AppText {
                id: sizeLabel
                anchors.right: parent.right
                text: head.mail.sizeText
                color: Theme.text2
            }
            Row {
                anchors.right: parent.right
                spacing: Theme.space
                Symbol {
                    anchors.verticalCenter: parent.verticalCenter
                    size: 14
                    name: head.mail.placeSymbol
                    color: Theme.text3
                }
                AppText {
                    id: placeLabel
                    width: Math.min(implicitWidth, 160, head.width / 4)
                    text: head.mail.placeName
                    color: Theme.text2
                }
            }
        }
    }
}
