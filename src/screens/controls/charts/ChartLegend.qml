// The names of a chart's series with their sums. Each of `entries` has a `series`, a `label` and a `text`.
import QtQuick
import Corvane

Row {
    id: legend

    property var entries: []

    spacing: 20

    Repeater {
        model: legend.entries
        delegate: Row {
            id: entry
            required property var modelData
            spacing: 6
            Accessible.role: Accessible.StaticText
            Accessible.name: modelData.label + " " + modelData.text

            Swatch {
                anchors.verticalCenter: parent.verticalCenter
                series: entry.modelData.series
            }
            AppText {
                text: entry.modelData.label
                color: Theme.text2
                Accessible.ignored: true
            }
            AppText {
                text: entry.modelData.text
                font.weight: Theme.strong
                Accessible.ignored: true
            }
        }
    }
}
