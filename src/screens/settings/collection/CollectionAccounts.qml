// The accounts of the library, of which a group takes those that are ticked.
pragma ComponentBehavior: Bound

import QtQuick
import Corvane

FocusGroup {
    id: group

    required property AddressCollection collection

    implicitHeight: accounts.implicitHeight

    CollectionFrame {
        id: accounts
        width: parent.width

        Repeater {
            model: group.collection.accounts
            delegate: Item {
                id: account
                required property int index
                required property string title
                required property string countText
                required property string sizeText
                required property bool isTicked
                width: accounts.width - 2
                height: 37

                Rectangle {
                    visible: account.index > 0
                    width: parent.width
                    height: Theme.hairline
                    color: Theme.line
                }
                TickBox {
                    x: 12
                    anchors.verticalCenter: parent.verticalCenter
                    objectName: "collectionAccount" + account.index
                    name: account.title + "，" + account.countText
                    tick: account.isTicked ? 1 : 0
                    onClicked: group.collection.toggleAccount(account.index)
                }
                AppText {
                    x: 36
                    width: parent.width - x - 180
                    anchors.verticalCenter: parent.verticalCenter
                    text: account.title
                    elide: Text.ElideMiddle
                    Accessible.ignored: true
                    TapHandler {
                        onTapped: group.collection.toggleAccount(account.index)
                    }
                }
                AppText {
                    anchors.right: parent.right
                    anchors.rightMargin: 92
                    anchors.verticalCenter: parent.verticalCenter
                    text: account.countText
                    Accessible.ignored: true
                }
                AppText {
                    anchors.right: parent.right
                    anchors.rightMargin: 16
                    anchors.verticalCenter: parent.verticalCenter
                    text: account.sizeText
                    role: AppText.Note
                    color: Theme.text3
                    Accessible.ignored: true
                }
            }
        }
        AppText {
            x: 12
            height: 36
            visible: group.collection.accounts.count === 0
            text: group.collection.countText === "—" ? "正在统计…" : "归档库还是空的"
            color: Theme.text3
        }
    }
}
