// The status of one year: a box with its glyph, the year below it. `kind` as of YearStatus; empty for a year without
// archived mail. `muted` for a status that rests on a look of long ago.
import QtQuick
import Corvane

Item {
    id: cell

    property string label: ""
    property string kind: ""
    property string symbol: ""
    property string help: ""
    property bool muted: false
    readonly property bool isFull: kind === "cleanable" && !muted

    implicitWidth: 32
    implicitHeight: label.length > 0 ? 42 : 22
    Accessible.ignored: true

    Rectangle {
        id: box
        width: parent.width
        height: cell.label.length > 0 ? 22 : parent.height
        radius: 3
        visible: cell.kind.length > 0
        color: {
            switch (cell.kind) {
            case "cleanable":
                return cell.muted ? Theme.surface : Theme.seriesArchived;
            case "incomplete":
                return Theme.attentionBackground;
            case "server":
                return Theme.seriesServerOnly;
            case "checking":
            case "unchecked":
            case "unavailable":
                return Theme.inset;
            default:
                return Theme.surface;
            }
        }
        border.color: {
            switch (cell.kind) {
            case "cleanable":
                return Theme.seriesArchived;
            case "incomplete":
                return Theme.seriesUnarchived;
            case "server":
                return Theme.seriesServerOnlyLine;
            case "pending":
            case "awaiting":
                return Theme.controlLine;
            default:
                return Theme.line;
            }
        }

        Symbol {
            anchors.centerIn: parent
            size: 13
            stroke: 2.4
            name: cell.symbol
            color: cell.isFull ? Theme.surface : cell.kind === "cleanable" ? Theme.seriesArchived
                : cell.kind === "incomplete" ? Theme.attention : cell.kind === "server" || cell.kind === "pending"
                || cell.kind === "awaiting" ? Theme.text2 : Theme.text3
        }
        HoverHandler {
            id: pointer
        }
        readonly property string explanation: pointer.hovered ? cell.help : ""
        onExplanationChanged: ToolTips.explain(box, explanation)
    }
    AppText {
        y: 24
        width: parent.width
        visible: cell.label.length > 0
        horizontalAlignment: Text.AlignHCenter
        text: cell.label
        role: AppText.Note
        color: Theme.text2
        Accessible.ignored: true
    }
}
