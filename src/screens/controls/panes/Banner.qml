// What the user must know before anything else on a screen; at most one a screen. `compact` puts all lines on one.
// Buttons are its children and stand at the right.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Corvane

Rectangle {
    id: banner

    // "safe", "attention", "danger" or "info".
    property string kind: "info"
    property string headline: ""
    property var lines: []
    property string symbol: kind === "safe" ? "shield-check" : kind === "attention" ? "triangle-alert"
        : kind === "danger" ? "octagon-x" : "info"
    property bool compact: false
    // Wider lines break; 0 for the width that is there.
    property int lineMeasure: 0
    default property alias actions: actionRow.data
    // Stands below the lines, as wide as they may be. Whether it is shown is said here: what stands in a hidden part
    // is never visible itself.
    property alias footer: footerColumn.data
    property bool showsFooter: true
    readonly property int verticalPadding: compact ? 10 : 13
    readonly property var shownLines: compact && lines.length > 1 ? [lines.join("　")] : lines

    implicitWidth: 400
    implicitHeight: layout.implicitHeight + 2 * verticalPadding
    radius: Theme.radiusLarge
    color: Theme.toneBackground(kind)
    border.color: Theme.toneLine(kind)
    Accessible.role: Accessible.AlertMessage
    Accessible.name: headline + (headline.length > 0 && lines.length > 0 ? "，" : "") + lines.join("，")

    RowLayout {
        id: layout
        anchors.fill: parent
        anchors.margins: 17
        anchors.topMargin: banner.verticalPadding
        anchors.bottomMargin: banner.verticalPadding
        spacing: 12

        Symbol {
            // A headline alone stands in the middle beside a button.
            Layout.alignment: banner.shownLines.length > 0 ? Qt.AlignTop : Qt.AlignVCenter
            Layout.topMargin: banner.shownLines.length > 0 ? 1 : 0
            size: 20
            name: banner.symbol
            color: banner.kind === "info" ? Theme.text2 : Theme.toneText(banner.kind)
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 0

            AppText {
                Layout.fillWidth: true
                visible: text.length > 0
                text: banner.headline
                role: AppText.Heading
                wrapMode: Text.Wrap
                maximumLineCount: 2
                color: Theme.toneText(banner.kind)
                Accessible.ignored: true
            }
            // One text for all: the layouts of Qt 6.4 keep items that leave them while they are hidden.
            AppText {
                Layout.fillWidth: true
                Layout.maximumWidth: banner.lineMeasure > 0 ? banner.lineMeasure : Infinity
                visible: text.length > 0
                text: banner.shownLines.join("\n")
                wrapMode: Text.Wrap
                Accessible.ignored: true
            }
            ColumnLayout {
                id: footerColumn
                Layout.fillWidth: true
                Layout.topMargin: Theme.space
                visible: banner.showsFooter && children.length > 0
                spacing: 0
            }
        }
        // Takes what lines that may not be wider leave.
        Item {
            Layout.fillWidth: true
            visible: banner.lineMeasure > 0
        }
        RowLayout {
            id: actionRow
            Layout.alignment: Qt.AlignVCenter
            spacing: Theme.space
            visible: children.length > 0
        }
    }
}
