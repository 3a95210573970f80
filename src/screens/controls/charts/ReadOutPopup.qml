// A ReadOut above its parent, open as long as it exists.
import QtQuick
import QtQuick.Templates as T
import Corvane

T.Popup {
    id: popup

    property string title: ""
    property var rows: []

    visible: true
    x: parent ? Math.round((parent.width - width) / 2) : 0
    y: -height - Theme.half
    margins: Theme.space
    closePolicy: T.Popup.NoAutoClose
    implicitWidth: content.implicitWidth
    implicitHeight: content.implicitHeight
    enabled: false

    contentItem: ReadOut {
        id: content
        title: popup.title
        rows: popup.rows
    }
}
