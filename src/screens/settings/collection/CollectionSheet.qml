// Puts accounts and addresses together under one name: at the left what belongs to it, at the right what that collects.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Corvane

Sheet {
    id: sheet

    required property AddressCollection collection

    objectName: "collectionSheet"
    title: "地址合集"
    subtitle: "把几个邮箱或地址的归档邮件归在一个名称下面。"
    wantedWidth: 860
    scrolls: false
    primary: save
    note: collection.note

    readonly property bool wanted: collection.isOpen
    onWantedChanged: {
        if (wanted)
            open();
        else
            close();
    }
    onClosed: collection.close()
    onAboutToShow: {
        nameField.text = collection.name;
        Qt.callLater(beginAtName); // qmllint disable
    }

    Connections {
        target: sheet.collection
        function onChanged() {
            if (nameField.text !== sheet.collection.name)
                nameField.text = sheet.collection.name;
        }
    }
    function beginAtName() {
        nameField.forceActiveFocus(Qt.TabFocusReason);
        nameField.selectAll();
    }

    component Section: RowLayout {
        property alias title: heading.text
        property alias hint: remark.text
        Layout.fillWidth: true
        Layout.topMargin: 16
        Layout.bottomMargin: 4
        spacing: 12

        AppText {
            id: heading
            role: AppText.Heading
        }
        AppText {
            id: remark
            Layout.fillWidth: true
            role: AppText.Note
            color: Theme.text2
        }
    }

    fillingItems: Item {
        anchors.fill: parent
        implicitHeight: Math.max(380, left.implicitHeight)

        RowLayout {
            anchors.fill: parent
            spacing: 24

            FocusScroller {
                id: left

                // The bar stands beside the frames.
                Layout.leftMargin: -12
                Layout.rightMargin: -12
                Layout.fillWidth: true
                Layout.fillHeight: true
                margin: 12
                gap: 0

                AppText {
                    Layout.bottomMargin: 4
                    text: "名称"
                    role: AppText.Heading
                }
                FocusGroup {
                    Layout.fillWidth: true
                    implicitHeight: Theme.controlHeightPrimary

                    AppTextField {
                        id: nameField
                        objectName: "collectionName"
                        anchors.fill: parent
                        name: "名称"
                        placeholderText: "例如 恒泰工作邮件"
                        onTextEdited: sheet.collection.name = text
                    }
                }
                Section {
                    title: "整个邮箱"
                    hint: "这些邮箱里的全部归档邮件"
                }
                CollectionAccounts {
                    Layout.fillWidth: true
                    collection: sheet.collection
                }
                Section {
                    title: "地址"
                    hint: "发件人或收件人里有它"
                }
                CollectionAddresses {
                    Layout.fillWidth: true
                    collection: sheet.collection
                }
            }
            Line {
                Layout.fillHeight: true
            }
            CollectionPreview {
                Layout.fillHeight: true
                Layout.preferredWidth: 297
                Layout.maximumWidth: 297
                Layout.alignment: Qt.AlignTop
                collection: sheet.collection
            }
        }
    }
    barItems: [
        PlainButton {
            objectName: "removeCollection"
            visible: sheet.collection.isExisting
            text: "删除合集"
            onClicked: sheet.collection.removeGroup()
        },
        AppButton {
            objectName: "cancelCollection"
            implicitHeight: Theme.controlHeightPrimary
            horizontalPadding: 20
            text: "取消"
            onClicked: sheet.collection.close()
        },
        PrimaryButton {
            id: save
            objectName: "saveCollection"
            enabled: sheet.collection.canSave
            text: "保存合集"
            onClicked: sheet.collection.save()
        }
    ]
}
