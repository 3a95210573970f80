// The text of the mail: message, signature, history, each in its manner. Its links are text.
import QtQuick
import Corvane

TextEdit {
    id: body

    required property ArchivedBody content

    signal pageRequested(bool forward)
    // The first place of the search, from the top of the text; negative without one.
    signal firstMarkAt(real y)

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
    Accessible.name: "正文"
    Keys.onSpacePressed: event => pageRequested(!(event.modifiers & Qt.ShiftModifier))

    FocusRing {
        shown: body.activeFocus && KeyboardFocus.inUse
    }
    BodyLayout {
        id: layout
        document: body.textDocument
        body: body.content
        lineHeight: Theme.messageLine
        bodySize: Theme.bodySize
        noteSize: Theme.noteSize
        bodyColor: Theme.text1
        quietColor: Theme.text2
        faintColor: Theme.text3
        markColor: Theme.searchMark
        onLaidOut: Qt.callLater(body.showMark) // qmllint disable
    }

    function showMark() {
        firstMarkAt(layout.firstMark < 0 ? -1 : positionToRectangle(layout.firstMark).y);
    }
}
