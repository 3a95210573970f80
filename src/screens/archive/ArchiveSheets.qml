// The sheets of the archive flow, over whatever screen is shown; at most one of them is open.
import QtQuick
import Corvane

Item {
    id: sheets

    required property ArchiveScreen archive

    component ArchiveSheet: OnDemand {
        required property int stage

        properties: ({ archive: sheets.archive })
        wanted: sheets.archive.isShown && sheets.archive.stage === stage
    }

    ArchiveSheet {
        source: Qt.resolvedUrl("ArchiveConfirmSheet.qml")
        stage: ArchiveScreen.Confirm
    }
    ArchiveSheet {
        source: Qt.resolvedUrl("run/ArchiveRunningSheet.qml")
        stage: ArchiveScreen.Running
    }
    ArchiveSheet {
        source: Qt.resolvedUrl("ArchiveResultSheet.qml")
        stage: ArchiveScreen.Result
    }
}
