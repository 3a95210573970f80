// The places at one press. They share the width and wrap where they would become too narrow; arrows go from card to
// card.
import QtQuick
import Corvane

FocusGroup {
    id: group

    required property QuickDestinations destinations
    readonly property int count: cards.count
    readonly property int perRow: Math.max(1, Math.min(count, Math.floor((width + Theme.space) / (140 + Theme.space))))
    readonly property real cardWidth: (width - (perRow - 1) * Theme.space) / perRow

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
                width: Math.floor(group.cardWidth)
                onClicked: group.destinations.choose(index)
            }
        }
    }
}
