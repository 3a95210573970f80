// The addresses of a group, and the field for one more.
pragma ComponentBehavior: Bound

import QtQuick
import Corvane

Column {
    id: group

    required property AddressCollection collection

    spacing: Theme.half

    FocusGroup {
        width: parent.width
        implicitHeight: addresses.implicitHeight

        CollectionFrame {
            id: addresses
            width: parent.width

            Repeater {
                model: group.collection.addresses
                delegate: Item {
                    id: address
                    required property int index
                    required property string title
                    required property string countText
                    width: addresses.width - 2
                    height: 37

                    Symbol {
                        x: 12
                        anchors.verticalCenter: parent.verticalCenter
                        size: 16
                        name: "at-sign"
                        color: Theme.text3
                    }
                    AppText {
                        x: 36
                        width: parent.width - x - 160
                        anchors.verticalCenter: parent.verticalCenter
                        text: address.title
                        elide: Text.ElideMiddle
                    }
                    AppText {
                        anchors.right: parent.right
                        anchors.rightMargin: 44
                        anchors.verticalCenter: parent.verticalCenter
                        text: address.countText
                    }
                    IconButton {
                        anchors.right: parent.right
                        anchors.rightMargin: 8
                        anchors.verticalCenter: parent.verticalCenter
                        implicitHeight: Theme.minimumTarget
                        bare: true
                        symbol: "x"
                        symbolSize: 14
                        help: "去掉 " + address.title
                        onClicked: {
                            addressField.forceActiveFocus(Qt.OtherFocusReason);
                            group.collection.removeAddress(address.index);
                        }
                    }
                    Rectangle {
                        anchors.bottom: parent.bottom
                        width: parent.width
                        height: Theme.hairline
                        color: Theme.line
                    }
                }
            }
            Item {
                width: addresses.width - 2
                height: 46

                AppTextField {
                    id: addressField

                    function add() {
                        refused.visible = !group.collection.addAddress(text);
                        if (!refused.visible)
                            clear();
                    }

                    objectName: "collectionAddress"
                    x: 12
                    width: parent.width - addButton.width - 32
                    anchors.verticalCenter: parent.verticalCenter
                    implicitHeight: Theme.controlHeightPane
                    name: "地址"
                    placeholderText: "输入地址"
                    onTextEdited: refused.visible = false
                    // An empty field leaves the key to the sheet.
                    Keys.onReturnPressed: event => {
                        event.accepted = text.length > 0;
                        if (event.accepted)
                            add();
                    }
                    Keys.onEnterPressed: event => {
                        event.accepted = text.length > 0;
                        if (event.accepted)
                            add();
                    }
                    Keys.onEscapePressed: event => {
                        event.accepted = text.length > 0;
                        clear();
                        refused.visible = false;
                    }
                }
                AppButton {
                    id: addButton
                    objectName: "addAddress"
                    anchors.right: parent.right
                    anchors.rightMargin: 8
                    anchors.verticalCenter: parent.verticalCenter
                    implicitHeight: Theme.controlHeightPane
                    enabled: addressField.text.length > 0
                    text: "添加"
                    onClicked: addressField.add()
                }
            }
        }
    }
    AppText {
        id: refused
        objectName: "addressRefused"
        visible: false
        text: "这不是一个完整的邮件地址"
        role: AppText.Note
        color: Theme.danger
        Accessible.role: Accessible.AlertMessage
    }
}
