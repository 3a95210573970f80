// The screen 归档邮件: what still has to go into the archive, and the way there.
import QtQuick
import QtQuick.Layouts
import Corvane

ScreenPage {
    id: page

    readonly property HomeScreen home: app.home
    readonly property bool hasList: home.state !== HomeScreen.NoAccess && home.state !== HomeScreen.Scanning
        && home.state !== HomeScreen.FirstUse

    objectName: "homePage"
    onEscaped: home.clearScope()

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        ScreenHead {
            Layout.fillWidth: true
            title: "归档邮件"
            subtitle: page.home.organizeSimpleSummary
            low: page.low
            margin: page.margin

            AppText {
                visible: !page.narrow && text.length > 0
                text: page.home.scan.updatedText
                role: AppText.Note
                color: Theme.text3
            }
            AppButton {
                objectName: "updateButton"
                visible: page.hasList || page.home.scan.isScanning
                enabled: page.home.scan.canUpdate
                symbol: "refresh-cw"
                text: page.home.scan.updateTitle
                help: "重新读取所有 Mail 邮箱和全部年份的数据，找出可归档的邮件"
                onClicked: page.home.scan.update()
            }
        }
        Loader {
            id: body
            Layout.fillWidth: true
            Layout.fillHeight: true
            focus: true
            sourceComponent: {
                switch (page.home.state) {
                case HomeScreen.NoAccess:
                    return Qt.platform.os === "osx" ? noAccess : folderAccess;
                case HomeScreen.Scanning:
                    return scanning;
                case HomeScreen.FirstUse:
                    return firstUse;
                default:
                    return overview;
                }
            }
        }
        HomeLocationBar {
            Layout.fillWidth: true
            visible: page.hasList || (page.home.state === HomeScreen.FirstUse && !page.home.destination.isChosen)
            home: page.home
            archive: page.app.archive
            margin: page.margin
            narrow: page.narrow
            choosesOnly: !page.hasList
        }
    }

    OnDemand {
        id: otherMail
        source: Qt.resolvedUrl("OtherMailSheet.qml")
        properties: ({ otherMail: page.app.otherMail })
    }
    Notice {
        id: notice
        area: page
    }
    Connections {
        target: page.home.access
        function onFailed(text: string) {
            notice.show(text);
        }
    }
    ArchiveSheets {
        archive: page.app.archive
    }
    // A Loader of Qt 6.4 takes no bound components.
    // qmllint disable unqualified
    Component {
        id: noAccess
        HomeNoAccess {
            home: page.home
        }
    }
    Component {
        id: folderAccess
        HomeFolderAccess {
            home: page.home
            onOtherMailRequested: (otherMail.made() as OtherMailSheet)?.ask()
        }
    }
    Component {
        id: scanning
        HomeScanning {
            home: page.home
        }
    }
    Component {
        id: firstUse
        HomeFirstUse {
            home: page.home
            onOtherMailRequested: (otherMail.made() as OtherMailSheet)?.ask()
        }
    }
    Component {
        id: overview
        HomeOverview {
            home: page.home
            narrow: page.narrow
            low: page.low
            margin: page.margin
        }
    }
}
