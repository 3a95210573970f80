// The head of a sheet: title, one line, and an icon where the title states an outcome.
import QtQuick
import QtQuick.Layouts
import Corvane

Item {
    id: head

    property string title: ""
    property string subtitle: ""
    property string subtitleSymbol: ""
    property string symbol: ""
    property color symbolColor: Theme.text1
    property string figure: ""
    property string figureCaption: ""
    property string figureKind: ""

    implicitHeight: row.implicitHeight + 34

    RowLayout {
        id: row
        x: 24
        y: 20
        width: parent.width - 48
        spacing: 12

        Symbol {
            Layout.alignment: Qt.AlignTop
            Layout.topMargin: 2
            visible: head.symbol.length > 0
            size: 24
            name: head.symbol
            color: head.symbolColor
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 0

            AppText {
                Layout.fillWidth: true
                text: head.title
                role: AppText.Title
                wrapMode: Text.Wrap
                maximumLineCount: 2
                Accessible.role: Accessible.Heading
            }
            RowLayout {
                Layout.topMargin: head.subtitleSymbol.length > 0 ? 2 : 0
                visible: head.subtitle.length > 0
                spacing: 6

                Symbol {
                    visible: head.subtitleSymbol.length > 0
                    size: 16
                    name: head.subtitleSymbol
                    color: Theme.text2
                }
                AppText {
                    Layout.fillWidth: true
                    text: head.subtitle
                    wrapMode: Text.Wrap
                    color: Theme.text2
                }
            }
        }
        ColumnLayout {
            Layout.alignment: Qt.AlignTop
            visible: head.figure.length > 0
            spacing: 0

            AppText {
                Layout.alignment: Qt.AlignRight
                text: head.figureCaption
                role: AppText.Note
                color: Theme.text2
            }
            AppText {
                Layout.alignment: Qt.AlignRight
                text: head.figure
                role: AppText.Title
                color: Theme.toneText(head.figureKind)
            }
        }
    }
}
