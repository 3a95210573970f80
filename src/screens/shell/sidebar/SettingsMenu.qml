// What concerns no single screen: the archive places and the backup of the settings.
import QtQuick
import Corvane

AppMenu {
    id: menu

    signal placesRequested
    signal importRequested
    signal exportRequested

    objectName: "settingsMenu"

    AppMenuRow {
        objectName: "placesRow"
        text: "归档位置…"
        onTriggered: menu.placesRequested()
    }
    AppMenuRow {
        objectName: "importRow"
        text: "导入配置备份…"
        onTriggered: menu.importRequested()
    }
    AppMenuRow {
        objectName: "exportRow"
        text: "导出配置备份…"
        onTriggered: menu.exportRequested()
    }
}
