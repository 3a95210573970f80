// What a group would collect: how much, by what of it, and where that stands now.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Corvane

ColumnLayout {
    id: pane

    required property AddressCollection collection
    readonly property int mostParts: 6
    readonly property int mostSources: 5

    spacing: 0

    AppText {
        text: "会收集"
        role: AppText.Note
        color: Theme.text2
    }
    RowLayout {
        spacing: 8

        AppText {
            objectName: "collectionCount"
            text: pane.collection.countText
            role: AppText.Hero
        }
        AppText {
            Layout.fillWidth: true
            Layout.alignment: Qt.AlignBottom
            Layout.bottomMargin: 5
            text: pane.collection.sizeText
            role: AppText.Heading
            font.weight: Theme.regular
            color: Theme.text2
        }
    }
    Repeater {
        model: pane.collection.parts.slice(0, pane.mostParts)
        delegate: ColumnLayout {
            id: part
            required property var modelData
            Layout.fillWidth: true
            Layout.topMargin: 6
            spacing: 2

            RowLayout {
                spacing: 8

                Symbol {
                    size: 16
                    name: part.modelData.symbol
                    color: Theme.text3
                }
                AppText {
                    Layout.fillWidth: true
                    text: part.modelData.title
                    elide: Text.ElideMiddle
                }
                AppText {
                    text: part.modelData.countText
                    color: Theme.text2
                }
            }
            SizeBar {
                Layout.fillWidth: true
                Layout.leftMargin: 24
                fraction: part.modelData.share
            }
        }
    }
    AppText {
        visible: pane.collection.parts.length > pane.mostParts
        Layout.topMargin: 4
        text: "另有 " + (pane.collection.parts.length - pane.mostParts) + " 项"
        role: AppText.Note
        color: Theme.text3
    }
    Line {
        Layout.fillWidth: true
        Layout.topMargin: 20
        Layout.bottomMargin: 14
        visible: pane.collection.sources.length > 0
    }
    AppText {
        visible: pane.collection.sources.length > 0
        text: "从这些邮箱移过来"
        font.weight: Theme.strong
    }
    Repeater {
        model: pane.collection.sources.slice(0, pane.mostSources)
        delegate: RowLayout {
            id: source
            required property var modelData
            Layout.fillWidth: true
            Layout.topMargin: 4

            AppText {
                Layout.fillWidth: true
                text: source.modelData.title
                elide: Text.ElideMiddle
                color: Theme.text2
            }
            AppText {
                text: source.modelData.countText
            }
        }
    }
    RowLayout {
        Layout.topMargin: 20
        spacing: 8

        Symbol {
            Layout.alignment: Qt.AlignTop
            Layout.topMargin: 2
            size: 16
            name: "info"
            color: Theme.text3
        }
        AppText {
            Layout.fillWidth: true
            text: "只改变这里怎样归在一起，归档文件和 Mail 都不会动。"
            wrapMode: Text.Wrap
            role: AppText.Note
            color: Theme.text2
        }
    }
    Item {
        Layout.fillHeight: true
    }
}
