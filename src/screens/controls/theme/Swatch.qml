// The mark of a series in a legend: "archived", "unarchived", "serverOnly", or "share1" to "share4".
import QtQuick
import Corvane

Rectangle {
    property string series: "archived"

    implicitWidth: 10
    implicitHeight: 10
    radius: Theme.radiusBar
    color: Theme.seriesFill(series)
    border.width: Theme.seriesHasLine(series) ? Theme.hairline : 0
    border.color: Theme.seriesLine(series)
}
