// The size of a row beside the largest one.
import QtQuick
import Corvane

Item {
    id: bar

    // 0 to 1; what isn't nothing shows.
    property real fraction: 0

    implicitWidth: 112
    implicitHeight: Theme.sizeBarHeight

    Rectangle {
        width: bar.fraction > 0 ? Math.max(2, bar.width * Math.min(1, bar.fraction)) : 0
        height: parent.height
        radius: Theme.radiusBar
        color: Theme.bar
    }
}
