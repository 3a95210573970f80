// The sheets of the archive flow, over whatever screen is shown; at most one of them is open.
import QtQuick
import Corvane

Item {
    id: sheets

    required property ArchiveScreen archive

    ArchiveConfirmSheet {
        archive: sheets.archive
    }
    ArchiveRunningSheet {
        archive: sheets.archive
    }
    ArchiveResultSheet {
        archive: sheets.archive
    }
}
