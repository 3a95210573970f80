// The places at one press. They share the width and wrap where they would become too narrow; arrows go from card to
// card.
pragma ComponentBehavior: Bound

import QtQuick
import Corvane

FocusGroup {
    id: group

    required property QuickDestinations destinations
    readonly property int count: cards.count
    readonly property int perRow: Math.max(1, Math.min(count, Math.floor((width + Theme.space) / (140 + Theme.space))))
    // A lone one isn't stretched over the sheet.
    readonly property int cardWidth: Math.min(Math.floor((width - (perRow - 1) * Theme.space) / perRow), 260)
    // Pixels that don't divide go to the first cards of a row, so that its edges stand in line with the sheet's.
    readonly property int remainder: Math.min(perRow, Math.floor(width) - (perRow - 1) * Theme.space - perRow * cardWidth)

    implicitHeight: flow.implicitHeight

    Flow {
        id: flow
        width: parent.width
        spacing: Theme.space

        Repeater {
            id: cards
            model: group.destinations
            delegate: DestinationCard {
                required property int index
                objectName: "destinationCard" + index
                width: group.cardWidth + (index % group.perRow < group.remainder ? 1 : 0)
                onClicked: group.destinations.choose(index)
            }
        }
    }
}
