// Asks for the name of a folder to be made in the shown one. Escape takes it away again.
import QtQuick
import QtQuick.Layouts
import Corvane

FocusScope {
    id: scope

    required property FolderPicker picker

    signal done

    implicitHeight: row.implicitHeight
    onVisibleChanged: if (visible) {
        field.clear();
        field.forceActiveFocus(Qt.OtherFocusReason);
    }
    Keys.onEscapePressed: done()

    function make() {
        if (makeButton.enabled)
            picker.makeFolder(field.text.trim());
    }

    RowLayout {
        id: row
        width: parent.width
        spacing: 8

        AppTextField {
            id: field
            objectName: "newFolderName"
            Layout.fillWidth: true
            name: "新文件夹的名称"
            placeholderText: "新文件夹的名称"
            maximumLength: 250
            onAccepted: scope.make()
            Keys.onReturnPressed: scope.make()
            Keys.onEnterPressed: scope.make()
        }
        AppButton {
            id: makeButton
            objectName: "makeFolderButton"
            enabled: field.text.trim().length > 0 && !scope.picker.busy
            text: "新建"
            onClicked: scope.make()
        }
        AppButton {
            text: "放弃"
            onClicked: scope.done()
        }
    }
    Connections {
        target: scope.picker
        function onFolderMade() {
            scope.done();
        }
    }
}
