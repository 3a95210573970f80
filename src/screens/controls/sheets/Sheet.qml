// What stands over the window until it is answered: a fixed head and bar, a body between them. Of several open ones
// only one is shown, which keeps the keyboard (OpenSheets). Escape closes it when `dismissable`; Return presses `primary`.
//
// The body is a column that scrolls; with `scrolls` off it is one item that fills what is left, such as a list. Items
// of `barItems` stand at the right of the bar.
import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import QtQuick.Window
import Corvane

T.Popup {
    id: sheet

    // Without one the body begins at the top, and `spokenTitle` is what the sheet is called.
    property string title: ""
    property string spokenTitle: title
    property string subtitle: ""
    property string symbol: ""
    property color symbolColor: Theme.text1
    property string note: ""
    property string noteLine: ""
    property color noteColor: noteLine.length > 0 ? Theme.text1 : Theme.text2
    property int noteLineElide: Text.ElideRight
    property int wantedWidth: 580
    property int wantedHeight: 0
    property bool dismissable: true
    property bool scrolls: true
    // Below the body.
    property int bodyGap: 20
    property string subtitleSymbol: ""
    // At the right of the head, below its caption.
    property string figure: ""
    property string figureCaption: ""
    property string figureKind: ""
    // Of the bar, where its note is a statement.
    property string barKind: ""
    property AppButton primary: null
    // It begins with the keyboard on itself: no key presses anything by mistake.
    property bool holdsKeyboard: false
    // 0: as high as the window allows.
    property int mostHeight: 0
    default property alias bodyItems: scroller.items
    property alias fillingItems: fillingBody.data
    property alias barItems: bar.items
    property real offset: 0
    // It goes before others, whenever they came.
    property bool urgent: false
    // Another one is shown in its place. By opacity: layouts of Qt 6.4 that are hidden keep items that were destroyed
    // meanwhile, and crash when they are shown again.
    readonly property bool waits: visible && OpenSheets.shown !== sheet
    readonly property SheetKeyboard keyboard: SheetKeyboard {
        sheet: sheet
    }

    // In Qt 6.4 a modal popup takes the wheel from those above it.
    modal: !waits
    focus: true
    closePolicy: dismissable ? T.Popup.CloseOnEscape : T.Popup.NoAutoClose
    parent: T.Overlay.overlay
    width: parent ? Math.min(wantedWidth, parent.width - 32) : wantedWidth
    height: Math.min(wantedHeight > 0 ? wantedHeight : frame.implicitHeight + 2, mostHeight > 0 ? mostHeight : Infinity,
        parent ? parent.height - 32 : 0)
    x: parent ? Math.round((parent.width - width) / 2) : 0
    y: parent ? Math.round((parent.height - height) / 2) + offset : 0
    padding: 1

    onAboutToShow: {
        keyboard.begunAt = null;
        KeyboardFocus.awaitFreshKey();
        OpenSheets.enter(sheet, parent.Window.activeFocusItem);
    }
    onClosed: OpenSheets.leave(sheet, keyboard.focusReason)
    onOpened: keyboard.enter()

    z: urgent ? 1 : 0
    T.Overlay.modal: Rectangle {
        color: sheet.waits ? "transparent" : Theme.scrim // qmllint disable unqualified
    }
    enter: Transition {
        NumberAnimation {
            property: "offset"
            from: Theme.sheetTravel
            to: 0
            duration: Theme.sheetInDuration
            easing.type: Easing.OutCubic
        }
    }
    exit: Transition {
        NumberAnimation {
            property: "offset"
            from: 0
            to: Theme.sheetTravel
            duration: Theme.sheetOutDuration
            easing.type: Easing.OutCubic
        }
    }
    background: Rectangle {
        opacity: sheet.waits ? 0 : 1
        color: Theme.sheet
        border.color: Theme.lineStrong
        radius: Theme.radiusSheet
    }
    contentItem: FocusScope {
        property var sheetAround: sheet

        focus: true
        opacity: sheet.waits ? 0 : 1
        // Neither keys nor a screen reader come to what isn't seen.
        enabled: !sheet.waits
        Accessible.ignored: sheet.waits
        Accessible.role: Accessible.Dialog
        Accessible.name: sheet.spokenTitle

        Keys.onReturnPressed: event => event.accepted = event.isAutoRepeat || sheet.pressPrimary()
        Keys.onEnterPressed: event => event.accepted = event.isAutoRepeat || sheet.pressPrimary()
        Keys.onPressed: event => event.accepted = sheet.scrolls && scroller.scrollBy(event.key)

        ColumnLayout {
            id: frame
            anchors.fill: parent
            spacing: 0

            SheetHead {
                Layout.fillWidth: true
                visible: sheet.title.length > 0
                title: sheet.title
                subtitle: sheet.subtitle
                subtitleSymbol: sheet.subtitleSymbol
                symbol: sheet.symbol
                symbolColor: sheet.symbolColor
                figure: sheet.figure
                figureCaption: sheet.figureCaption
                figureKind: sheet.figureKind
            }
            FocusScroller {
                id: scroller
                Layout.fillWidth: true
                Layout.fillHeight: true
                visible: sheet.scrolls
                gap: sheet.bodyGap
            }
            Item {
                id: fillingBody
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.leftMargin: 24
                Layout.rightMargin: 24
                Layout.bottomMargin: sheet.bodyGap
                implicitHeight: children.length > 0 ? children[0].implicitHeight : 0
                visible: !sheet.scrolls
            }
            Line {
                Layout.fillWidth: true
                color: Theme.toneLine(sheet.barKind)
            }
            SheetBar {
                id: bar
                Layout.fillWidth: true
                note: sheet.note
                noteLine: sheet.noteLine
                noteColor: sheet.noteColor
                noteLineElide: sheet.noteLineElide
                kind: sheet.barKind
            }
        }
    }

    function pressPrimary(): bool {
        if (!primary || !primary.enabled || !primary.visible)
            return false;
        primary.clicked();
        return true;
    }
}
