// Asks before mail goes from its archive. Where a mail may be the only copy, a tick of its own comes first; Return
// never removes unless the keyboard is on the button.
import QtQuick
import QtQuick.Layouts
import Corvane

Sheet {
    id: sheet

    required property RemovalQuestion removal
    readonly property bool removing: removal.step === RemovalQuestion.Removing
    // The tick stands in sight below them: all but the items takes 360, an item 56.
    readonly property int mostItems: removal.onlyCopy.title.length > 0 && parent
        ? Math.max(2, Math.floor((parent.height - 360) / 56)) : removal.items.length
    readonly property bool wanted: removal.step === RemovalQuestion.Asking || removing

    onWantedChanged: {
        if (wanted)
            open();
        else
            close();
    }
    onClosed: {
        if (removal.step === RemovalQuestion.Asking)
            removal.close();
    }

    objectName: "removalSheet"
    wantedWidth: 560
    title: removal.title
    subtitle: removal.line
    note: removal.note
    dismissable: !removing
    primary: cancel

    RemovalItems {
        Layout.fillWidth: true
        items: sheet.wanted ? sheet.removal.items.slice(0, sheet.mostItems) : []
        leftOut: sheet.removal.count - items.length
    }
    Banner {
        objectName: "onlyCopyBanner"
        Layout.fillWidth: true
        Layout.topMargin: Theme.section
        visible: sheet.removal.onlyCopy.title.length > 0
        kind: "attention"
        headline: sheet.removal.onlyCopy.title
        lines: [sheet.removal.onlyCopy.line]
        footer: [
            RowLayout {
                spacing: Theme.space
                Layout.bottomMargin: 2

                TickBox {
                    id: tick
                    objectName: "onlyCopyTick"
                    enabled: !sheet.removing
                    name: sheet.removal.onlyCopy.tickTitle
                    tick: sheet.removal.onlyCopy.ticked ? 1 : 0
                    onClicked: sheet.removal.onlyCopy.ticked = !sheet.removal.onlyCopy.ticked
                }
                AppText {
                    Layout.fillWidth: true
                    text: sheet.removal.onlyCopy.tickTitle
                    Accessible.ignored: true
                    TapHandler {
                        enabled: !sheet.removing
                        onTapped: sheet.removal.onlyCopy.ticked = !sheet.removal.onlyCopy.ticked
                    }
                }
            }
        ]
    }
    barItems: [
        AppButton {
            objectName: "removalStop"
            implicitHeight: Theme.controlHeightPrimary
            horizontalPadding: 20
            visible: sheet.removal.canStop
            text: "停止"
            help: "没有删掉的留在归档库里"
            onClicked: sheet.removal.stop()
        },
        AppButton {
            id: cancel
            objectName: "removalCancel"
            implicitHeight: Theme.controlHeightPrimary
            horizontalPadding: 20
            enabled: !sheet.removing
            text: "取消"
            onClicked: sheet.removal.close()
        },
        AppButton {
            objectName: "removalAccept"
            implicitHeight: Theme.controlHeightPrimary
            horizontalPadding: 20
            enabled: sheet.removal.canAccept
            text: "删除 " + sheet.removal.count.toLocaleString(Qt.locale("en_US"), "f", 0) + " 封"
            fill: down ? Theme.dangerLine : Theme.dangerBackground
            edge: Theme.dangerLine
            labelColor: Theme.danger
            labelWeight: Theme.strong
            onClicked: sheet.removal.accept()
        }
    ]
}
