// Makes a sheet or a menu of a file when it is asked for first, and keeps it. Until then not even its type is loaded:
// most are never opened, and all of them together would hold up the first frame.
import QtQuick

Item {
    id: holder

    required property url source
    // Values and bindings (Qt.binding) that it is made with.
    property var properties: ({})
    // It is made at the latest when this is true; whether it opens then is its own affair.
    property bool wanted: false
    // Null until it is made.
    property var item: null

    // Null where the file can't be made, which is logged.
    function made(): var {
        if (!item) {
            const component = Qt.createComponent(source);
            if (component.status === Component.Ready)
                item = component.createObject(holder, properties);
            if (!item)
                console.error(component.errorString());
        }
        return item;
    }

    onWantedChanged: if (wanted) made()
    Component.onCompleted: if (wanted) made()
}
