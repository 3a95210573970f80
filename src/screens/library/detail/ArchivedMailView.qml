// The mail that is shown: what is known of it, what can be done with it, its header, its text, its attachments.
import QtQuick
import QtQuick.Templates as T
import Corvane

FocusScope {
    id: view

    required property LibraryScreen screen
    readonly property ArchivedMail mail: screen.mail
    property bool low: false
    readonly property bool tight: width < 560

    signal menuRequested(Item button)
    // Of one attachment, or all for -1.
    signal saveRequested(int row)

    // A page of the message, as Space does in the list.
    function turnPage(forward: bool) {
        const step = (scroller.height - 2 * Theme.messageLine) * (forward ? 1 : -1);
        scrollTo(scroller.contentY + step);
    }
    function scrollTo(y: real) {
        scroller.contentY = Math.max(0, Math.min(scroller.contentHeight - scroller.height, y));
    }

    FocusGroup {
        id: toolbar
        width: parent.width
        height: Theme.toolbarHeight
        visible: view.mail.hasMail

        Chip {
            id: chip
            objectName: "archivedState"
            anchors.verticalCenter: parent.verticalCenter
            x: Theme.margin
            width: Math.min(implicitWidth, buttons.x - x - Theme.space)
            kind: view.mail.state.tone
            symbol: view.mail.state.symbol
            text: view.mail.state.text
        }
        Row {
            id: buttons
            anchors.right: parent.right
            anchors.rightMargin: Theme.margin
            y: Theme.space
            spacing: Theme.space

            PrimaryButton {
                objectName: "openArchived"
                implicitHeight: Theme.controlHeightPane
                horizontalPadding: 12
                symbol: view.mail.fileState === ArchivedFile.InCloud ? "icloud.and.arrow.down" : "mail-open"
                symbolSize: 14
                text: view.mail.openTitle
                help: view.mail.openHelp
                enabled: !view.mail.opening && view.mail.fileState !== ArchivedFile.Unplugged
                onClicked: view.screen.actions.openMail()
            }
            AppButton {
                objectName: "findOriginal"
                implicitHeight: Theme.controlHeightPane
                symbol: "square-arrow-out-up-right"
                symbolSize: 14
                text: view.tight ? "" : "在 Mail 中查找原件"
                help: view.tight ? "在 Mail 中查找原件" : ""
                onClicked: view.screen.actions.findOriginal()
            }
            IconButton {
                id: moreButton
                objectName: "archivedMore"
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
        anchors.bottom: tiles.top
        width: parent.width
        visible: view.mail.hasMail
        horizontal: false

        Flickable {
            id: scroller
            objectName: "archivedScroller"
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

                ArchivedMailHead {
                    width: parent.width
                    mail: view.mail
                }
                RetrievalBanner {
                    objectName: "retrievalBanner"
                    width: parent.width
                    running: view.mail.retrieving
                    onCancelled: view.screen.actions.cancelOpening()
                }
                Banner {
                    objectName: "goneBanner"
                    width: parent.width
                    visible: view.mail.fileState === ArchivedFile.Gone
                    kind: "danger"
                    headline: "归档文件不见了"
                    lines: ["它可能被删除或移动了，已不在你的归档备份里。" + (body.visible ? "下面的文字来自搜索索引。" : "")]
                }
                BodyText {
                    id: body
                    objectName: "archivedBody"
                    width: Math.min(parent.width, Theme.messageMeasure)
                    visible: view.mail.body.state === ArchivedBody.Text
                    content: view.mail.body
                    onPageRequested: forward => view.turnPage(forward)
                    onFirstMarkAt: y => {
                        if (y >= 0 && y + body.y + page.y > scroller.height - Theme.messageLine)
                            view.scrollTo(body.y + page.y + y - scroller.height / 3);
                    }
                }
                AppText {
                    visible: body.visible && view.mail.body.isCut
                    text: "正文很长，这里只显示开头。打开归档邮件可以看到全部。"
                    role: AppText.Note
                    color: Theme.text3
                }
                AppButton {
                    objectName: "quotedToggle"
                    visible: body.visible && view.mail.body.canCollapse
                    symbol: view.mail.body.quotedExpanded ? "chevron-down" : "chevron-right"
                    symbolSize: 14
                    text: view.mail.body.quotedExpanded ? "收起引用的历史邮件" : "展开引用的历史邮件（含收件人等）"
                    onClicked: view.mail.body.quotedExpanded = !view.mail.body.quotedExpanded
                }
                PlainButton {
                    objectName: "allRecipients"
                    visible: body.visible && view.mail.body.hidesRecipients
                    x: -horizontalPadding
                    text: "显示完整收件人"
                    onClicked: view.mail.body.showAllRecipients()
                }
                Item {
                    width: parent.width
                    height: 220
                    visible: !body.visible

                    EmptyState {
                        objectName: "bodyState"
                        readonly property int kind: view.mail.body.state
                        anchors.centerIn: parent
                        width: parent.width
                        symbolSize: 32
                        quiet: kind === ArchivedBody.Loading
                        symbol: view.mail.body.note.symbol
                        title: view.mail.body.note.title
                        line: view.mail.body.note.line
                        buttonText: kind === ArchivedBody.Unavailable ? "准备正文预览" : ""
                        onActivated: view.mail.body.prepareTexts()
                    }
                }
            }
        }
    }
    AttachmentTilePane {
        id: tiles
        anchors.bottom: parent.bottom
        width: parent.width
        height: visible ? implicitHeight : 0
        visible: view.mail.hasMail && attachments.count > 0
        attachments: view.screen.attachments
        // A search wants the room for the places it has found.
        compact: view.low || view.screen.search.query.length > 0
        onSaveRequested: row => view.saveRequested(row)
    }
    EmptyState {
        anchors.centerIn: parent
        width: parent.width - 2 * Theme.margin
        visible: !view.mail.hasMail
        symbol: "mail"
        symbolSize: 32
        quiet: true
        title: "没有选中的邮件"
    }
    Connections {
        target: view.mail
        function onMailChanged() {
            scroller.contentY = 0;
        }
    }
}
