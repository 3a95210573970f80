// Text of the window in one of its five sizes. It is always shown as it stands, never as markup. What is elided has
// the whole text as its tooltip.
import QtQuick
import Corvane

Text {
    id: label

    enum Role {
        Hero,
        Title,
        Heading,
        Body,
        Note
    }
    property int role: AppText.Body
    // The whole text where it isn't what is shown.
    property string wholeText: text
    // The tooltip is about to be shown, or is.
    readonly property bool explained: pointer.hovered && truncated
    readonly property string explanation: explained ? wholeText : ""

    textFormat: Text.PlainText
    color: Theme.text1
    font.pixelSize: Theme.textSizes[role]
    font.weight: Theme.textWeights[role]
    lineHeightMode: Text.FixedHeight
    lineHeight: Theme.textLines[role]
    // Said, so that a text from right to left begins where all others do.
    horizontalAlignment: Text.AlignLeft
    elide: Text.ElideRight
    verticalAlignment: Text.AlignVCenter
    Accessible.role: Accessible.StaticText
    Accessible.name: text
    onExplanationChanged: ToolTips.explain(label, explanation)

    HoverHandler {
        id: pointer
        enabled: label.truncated
    }
}
