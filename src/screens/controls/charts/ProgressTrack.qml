// Progress of a run: with a known end by `value` (0 to 1), else as a part that passes by. Spoken in tenths.
import QtQuick
import Corvane

Rectangle {
    id: track

    property real value: 0
    property bool indeterminate: false
    property int thickness: Theme.progressHeight
    property string name: "进度"
    property real phase
    readonly property real shown: Math.max(0, Math.min(1, value))
    readonly property int tenths: Math.floor(shown * 10)

    implicitWidth: 240
    implicitHeight: thickness
    radius: thickness / 2
    color: Theme.track
    Accessible.role: Accessible.ProgressBar
    Accessible.name: indeterminate ? name : name + "，" + tenths * 10 + "%"

    Rectangle {
        readonly property real passing: track.width * 0.34
        // Enters at the left, leaves at the right, cut by the ends of the track.
        readonly property real from: track.phase * (track.width + passing) - passing
        x: track.indeterminate ? (Theme.moves ? Math.max(0, from) : (track.width - passing) / 2) : 0
        width: track.indeterminate ? (Theme.moves ? Math.min(track.width, from + passing) - x : passing)
            : track.shown > 0 ? Math.max(track.thickness, track.width * track.shown) : 0
        visible: width > 0
        height: parent.height
        radius: parent.radius
        color: Theme.accentFill
    }
    NumberAnimation on phase {
        running: track.indeterminate && track.visible && Theme.moves
        loops: Animation.Infinite
        from: 0
        to: 1
        duration: Theme.indeterminatePass
    }
}
