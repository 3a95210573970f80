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

    property string title: ""
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
    property AppButton primary: null
    default property alias bodyItems: scrollingBody.data
    property alias fillingItems: fillingBody.data
    property alias barItems: buttons.data
    property real offset: 0
    // It goes before others, whenever they came.
    property bool urgent: false
    readonly property int focusReason: KeyboardFocus.inUse ? Qt.TabFocusReason : Qt.OtherFocusReason
    // Another one is shown in its place. By opacity: layouts of Qt 6.4 that are hidden keep items that were destroyed
    // meanwhile, and crash when they are shown again.
    readonly property bool waits: visible && OpenSheets.shown !== sheet
    // What the sheet gave the keyboard to.
    property Item begunAt: null

    modal: true
    focus: true
    closePolicy: dismissable ? T.Popup.CloseOnEscape : T.Popup.NoAutoClose
    parent: T.Overlay.overlay
    width: parent ? Math.min(wantedWidth, parent.width - 32) : wantedWidth
    height: Math.min(wantedHeight > 0 ? wantedHeight : frame.implicitHeight + 2, parent ? parent.height - 32 : 0)
    x: parent ? Math.round((parent.width - width) / 2) : 0
    y: parent ? Math.round((parent.height - height) / 2) + offset : 0
    padding: 1

    onAboutToShow: {
        begunAt = null;
        OpenSheets.enter(sheet, parent.Window.activeFocusItem);
    }
    onClosed: OpenSheets.leave(sheet, focusReason)
    onOpened: takeKeyboard()

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
        Accessible.name: sheet.title

        Keys.onReturnPressed: event => event.accepted = event.isAutoRepeat || sheet.pressPrimary()
        Keys.onEnterPressed: event => event.accepted = event.isAutoRepeat || sheet.pressPrimary()
        Keys.onPressed: event => event.accepted = sheet.scrolls && flick.scrollBy(event.key)
        readonly property Item holder: Window.activeFocusItem
        onHolderChanged: flick.show(holder)

        ColumnLayout {
            id: frame
            anchors.fill: parent
            spacing: 0

            SheetHead {
                Layout.fillWidth: true
                title: sheet.title
                subtitle: sheet.subtitle
                subtitleSymbol: sheet.subtitleSymbol
                symbol: sheet.symbol
                symbolColor: sheet.symbolColor
            }
            Flickable {
                id: flick
                Layout.fillWidth: true
                Layout.fillHeight: true
                visible: sheet.scrolls
                implicitHeight: scrollingBody.implicitHeight + sheet.bodyGap
                contentHeight: implicitHeight
                clip: contentHeight > height
                boundsBehavior: Flickable.StopAtBounds
                interactive: contentHeight > height
                T.ScrollBar.vertical: AppScrollBar {}

                readonly property real lowest: Math.max(0, contentHeight - height)

                function moveTo(position: real) {
                    contentY = Math.max(0, Math.min(lowest, position));
                }
                // Whether the key was one that scrolls.
                function scrollBy(key: int): bool {
                    const page = height - Theme.controlHeight;
                    const steps = new Map([[Qt.Key_Up, -Theme.rowDense], [Qt.Key_Down, Theme.rowDense],
                        [Qt.Key_PageUp, -page], [Qt.Key_PageDown, page], [Qt.Key_Home, -contentHeight],
                        [Qt.Key_End, contentHeight]]);
                    if (!steps.has(key))
                        return false;
                    moveTo(contentY + steps.get(key));
                    return true;
                }
                function show(item: Item) {
                    let at = item;
                    while (at && at !== scrollingBody)
                        at = at.parent;
                    if (!at)
                        return;
                    const top = item.mapToItem(scrollingBody, 0, 0).y;
                    moveTo(Math.min(top - Theme.space, Math.max(contentY, top + item.height + Theme.space - height)));
                }

                ColumnLayout {
                    id: scrollingBody
                    x: 24
                    width: flick.width - 48
                    spacing: 0
                }
            }
            Item {
                id: fillingBody
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.leftMargin: 24
                Layout.rightMargin: 24
                Layout.bottomMargin: sheet.bodyGap
                visible: !sheet.scrolls
            }
            Rectangle {
                Layout.fillWidth: true
                implicitHeight: Theme.hairline
                color: Theme.line
            }
            Rectangle {
                Layout.fillWidth: true
                implicitHeight: 64
                // The page's colour would show square corners below the sheet's round ones.
                color: Theme.page
                radius: Theme.radiusSheet - 1

                Rectangle {
                    width: parent.width
                    height: parent.radius
                    color: parent.color
                }
                RowLayout {
                    anchors.fill: parent
                    anchors.leftMargin: 24
                    anchors.rightMargin: 24
                    spacing: 12

                    ColumnLayout {
                        Layout.fillWidth: true
                        spacing: 0

                        AppText {
                            Layout.fillWidth: true
                            text: sheet.note
                            visible: text.length > 0
                            color: sheet.noteColor
                        }
                        AppText {
                            Layout.fillWidth: true
                            text: sheet.noteLine
                            elide: sheet.noteLineElide
                            visible: text.length > 0
                            role: AppText.Note
                            color: Theme.text3
                        }
                    }
                    RowLayout {
                        id: buttons
                        spacing: 12
                    }
                }
            }
        }
    }

    function sheetOf(item: Item): var {
        for (let at = item; at; at = at.parent) {
            if (at.sheetAround)
                return at.sheetAround;
        }
        return null;
    }

    // At once, and again when the sheet stands, as its primary button may have had to wait. Who has gone on by then
    // stays where they are: a Space meant for another control must not press the primary one. A sheet that was away
    // goes on where it was left.
    function takeKeyboard(): void {
        const holder = parent.Window.activeFocusItem;
        if (!visible || waits || (begunAt && holder !== begunAt && sheetOf(holder) === sheet))
            return;
        if (begunAt && sheetOf(holder) !== sheet) {
            KeyboardFocus.enter(contentItem);
            return;
        }
        const first = primary && primary.enabled ? primary
            : KeyboardFocus.inUse && holder === contentItem ? contentItem.nextItemInFocusChain(true)
            : null;
        if (first)
            first.forceActiveFocus(focusReason);
        begunAt = parent.Window.activeFocusItem;
    }

    function pressPrimary(): bool {
        if (!primary || !primary.enabled || !primary.visible)
            return false;
        primary.clicked();
        return true;
    }
}
