// A field for a line of text. Its name for those who can't see it is `name`.
import QtQuick
import QtQuick.Templates as T
import Corvane

T.TextField {
    id: field

    required property string name
    property bool showFocus: activeFocus

    implicitWidth: 320
    implicitHeight: Theme.controlHeight
    leftPadding: 10
    rightPadding: 10
    verticalAlignment: TextInput.AlignVCenter
    color: enabled ? Theme.text1 : Theme.disabled
    selectionColor: Theme.accentFill
    selectedTextColor: Theme.textOnAccent
    // The platform's own font for fields knows nothing of the window's families.
    font: Theme.fieldFont
    selectByMouse: true
    maximumLength: 5000
    Accessible.name: name

    background: Rectangle {
        radius: Theme.radiusSmall
        color: field.enabled ? Theme.control : Theme.inset
        border.width: field.showFocus ? Theme.ring : Theme.hairline
        border.color: field.showFocus ? Theme.accent : !field.enabled ? Theme.line : Theme.lineStrong

        AppText {
            anchors.verticalCenter: parent.verticalCenter
            x: field.leftPadding
            width: parent.width - 2 * x
            visible: field.text.length === 0 && field.preeditText.length === 0
            text: field.placeholderText
            color: field.enabled ? Theme.text3 : Theme.disabled
            Accessible.ignored: true
        }
    }
}
