// Shares of a whole, side by side. Each of `parts` has a `series` (as of Swatch), a `label`, a `value` and the `text`
// of the value; the pointer on a part shows them.
import QtQuick
import Corvane

Item {
    id: bar

    property var parts: []
    property int thickness: Theme.shareBarHeight
    readonly property var lengths: ChartMath.parts(parts.map(part => part.value), width, 1)

    implicitWidth: 240
    implicitHeight: thickness
    Accessible.role: Accessible.Chart
    Accessible.name: parts.map(part => part.label + " " + part.text).join("，")

    // A Loader of Qt 6.4 takes no bound components.
    // qmllint disable unqualified
    Repeater {
        model: bar.parts.length
        delegate: Rectangle {
            id: part
            required property int index
            readonly property var entry: bar.parts[index]
            readonly property real from: bar.startOf(index)
            // On whole pixels, so that neighbours stay apart.
            x: Math.round(from)
            width: Math.round(from + bar.lengths[index]) - x
            height: bar.height
            visible: bar.lengths[index] > 0
            // Only the ends of the bar are round.
            radius: index === 0 || index === bar.parts.length - 1 ? Theme.radiusBar : 0
            color: Theme.seriesFill(entry.series)
            border.width: Theme.seriesHasLine(entry.series) ? Theme.hairline : 0
            border.color: Theme.seriesLine(entry.series)

            HoverHandler {
                id: pointer
            }
            Loader {
                active: pointer.hovered
                sourceComponent: ReadOutPopup {
                    parent: part
                    rows: [part.entry]
                }
            }
        }
    }

    function startOf(index: int): real {
        let start = 0;
        for (let i = 0; i < index; ++i)
            start += lengths[i] > 0 ? lengths[i] + 1 : 0;
        return start;
    }
}
