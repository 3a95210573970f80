// The open message: whether it is archived, what can be done with it, its headers, its text and what hangs on it.
import QtQuick
import QtQuick.Templates as T
import Corvane

FocusScope {
    id: view

    required property MailListScreen screen
    readonly property MessageDetail detail: screen.detail
    property bool low: false
    readonly property bool hasTrouble: detail.shown.troubleTitle.length > 0
    // One more button than there is room for with their words.
    readonly property bool tight: hasTrouble && width < 480

    signal menuRequested(Item button)

    // A page of the message, as Space does in the list.
    function turnPage(forward: bool) {
        const step = (scroller.height - 2 * Theme.messageLine) * (forward ? 1 : -1);
        scroller.contentY = Math.max(0, Math.min(scroller.contentHeight - scroller.height, scroller.contentY + step));
    }

    FocusGroup {
        id: toolbar
        width: parent.width
        height: Theme.toolbarHeight
        visible: view.detail.hasMessage

        Chip {
            objectName: "archivedChip"
            anchors.verticalCenter: parent.verticalCenter
            x: Theme.margin
            kind: view.detail.shown.troubleTone === "danger" ? "danger" : view.detail.shown.archived ? "safe" : "attention"
            symbol: view.detail.shown.troubleSymbol.length > 0 ? view.detail.shown.troubleSymbol
                : view.detail.shown.archived ? "circle-check" : "circle-dashed"
            text: view.detail.shown.isSetAside ? "先放一边" : view.detail.shown.hasFailed ? "失败"
                : view.detail.shown.archived ? "已归档" : "未归档"
        }
        Row {
            anchors.right: parent.right
            anchors.rightMargin: Theme.margin
            y: Theme.space
            spacing: Theme.space

            AppButton {
                objectName: "openInMail"
                implicitHeight: Theme.controlHeightPane
                symbol: "square-arrow-out-up-right"
                symbolSize: 14
                text: view.tight ? "" : "在 Mail 中打开"
                help: view.tight ? "在 Mail 中打开" : ""
                onClicked: view.screen.actions.openInMail()
            }
            AppButton {
                objectName: "archiveButton"
                implicitHeight: Theme.controlHeightPane
                symbol: view.detail.shown.hasFailed ? "" : "archive"
                symbolSize: 14
                text: view.detail.shown.hasFailed ? "再试" : "归档…"
                enabled: view.screen.canArchive
                help: view.screen.selection.count > 1 ? "归档选中的 " + view.screen.selection.count + " 封邮件" : "只归档这一封邮件"
                onClicked: view.screen.actions.archiveSelection()
            }
            AppButton {
                objectName: "setAsideButton"
                implicitHeight: Theme.controlHeightPane
                visible: view.hasTrouble
                text: view.detail.shown.isSetAside ? "不再放一边" : "先放一边"
                help: "先放一边的邮件不参加归档全部；它仍算未归档"
                onClicked: view.screen.actions.setAside(!view.detail.shown.isSetAside)
            }
            IconButton {
                id: moreButton
                objectName: "moreActions"
                implicitHeight: Theme.controlHeightPane
                symbol: "ellipsis"
                help: "更多操作"
                onClicked: view.menuRequested(moreButton)
            }
        }
        Rectangle {
            anchors.bottom: parent.bottom
            width: parent.width
            height: Theme.hairline
            color: Theme.line
        }
    }

    FocusGroup {
        anchors.top: toolbar.bottom
        anchors.bottom: parent.bottom
        width: parent.width
        visible: view.detail.hasMessage
        horizontal: false

        Flickable {
            id: scroller
            objectName: "messageScroller"
            anchors.fill: parent
            contentHeight: page.height + 18 + Theme.margin
            boundsBehavior: Flickable.StopAtBounds
            clip: true
            T.ScrollBar.vertical: AppScrollBar {}

            Column {
                id: page
                x: Theme.margin
                y: 18
                width: scroller.width - 2 * Theme.margin
                spacing: Theme.section

                Column {
                    width: parent.width
                    spacing: 2

                    AppText {
                        objectName: "detailSubject"
                        width: parent.width
                        bottomPadding: 5
                        text: view.detail.shown.subject
                        role: AppText.Title
                        wrapMode: Text.Wrap
                        maximumLineCount: 2
                        Accessible.role: Accessible.Heading
                    }
                    DetailField {
                        width: parent.width
                        name: "发件人"
                        value: view.detail.shown.sender
                    }
                    DetailField {
                        objectName: "detailRecipients"
                        width: parent.width
                        name: "收件人"
                        value: view.detail.shown.recipients
                    }
                    DetailField {
                        width: parent.width
                        name: "日期"
                        value: view.detail.shown.dateText
                    }
                    DetailField {
                        width: parent.width
                        name: "位置"
                        value: view.detail.shown.place
                    }
                    DetailField {
                        objectName: "detailProof"
                        width: parent.width
                        name: "核对"
                        value: view.detail.shown.proofText
                    }
                }
                Banner {
                    objectName: "troubleBanner"
                    width: parent.width
                    visible: view.detail.shown.troubleTitle.length > 0
                    kind: view.detail.shown.troubleTone.length > 0 ? view.detail.shown.troubleTone : "info"
                    symbol: view.detail.shown.troubleSymbol
                    headline: view.detail.shown.troubleTitle
                    lines: view.detail.shown.troubleText.length > 0 ? [view.detail.shown.troubleText] : []
                }
                CopiesNote {
                    objectName: "copiesNote"
                    width: parent.width
                    visible: title.length > 0
                    compact: view.low
                    title: view.detail.shown.copiesTitle
                    places: view.detail.shown.copiesPlaces
                }
                AppText {
                    width: parent.width
                    visible: view.detail.shown.imported
                    text: "这封邮件在一个导入到 Mail 的邮箱里。"
                    role: AppText.Note
                    color: Theme.text3
                }
                TextEdit {
                    id: body
                    objectName: "detailPreview"
                    width: Math.min(parent.width, Theme.messageMeasure)
                    visible: view.detail.shown.hasPreview
                    text: view.detail.shown.preview
                    textFormat: TextEdit.PlainText
                    wrapMode: TextEdit.Wrap
                    readOnly: true
                    selectByMouse: true
                    activeFocusOnTab: true
                    color: Theme.text1
                    selectionColor: Theme.accentFill
                    selectedTextColor: Theme.textOnAccent
                    font.pixelSize: Theme.bodySize
                    Accessible.role: Accessible.EditableText
                    Accessible.readOnly: true
                    Accessible.multiLine: true
                    Accessible.name: "正文预览"
                    Keys.onSpacePressed: event => view.turnPage(!(event.modifiers & Qt.ShiftModifier))

                    FocusRing {
                        shown: body.activeFocus && KeyboardFocus.inUse
                    }
                    TextMarks {
                        area: body.textDocument
                        query: view.screen !== null ? view.screen.list.query : ""
                        color: Theme.searchMark
                    }
                    TextLines {
                        document: body.textDocument
                        height: Theme.messageLine
                    }
                }
                AppText {
                    visible: !view.detail.shown.hasPreview
                    text: view.detail.shown.preview
                    color: Theme.text3
                }
                AttachmentBox {
                    width: Math.min(parent.width, Theme.messageMeasure)
                    visible: view.detail.shown.attachmentCount > 0
                    compact: view.low
                    detail: view.detail
                    actions: view.screen.attachments
                }
                MessageFiles {
                    width: parent.width
                    detail: view.detail
                }
            }
        }
    }

    EmptyState {
        anchors.centerIn: parent
        width: parent.width - 2 * Theme.margin
        visible: !view.detail.hasMessage
        symbol: "mail"
        symbolSize: 32
        quiet: true
        title: "没有选中的邮件"
    }

    Connections {
        target: view.detail
        function onMessageChanged() {
            scroller.contentY = 0;
        }
    }
}
