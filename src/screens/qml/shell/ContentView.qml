// The frame of the window: sidebar at the left, the chosen screen beside it.
import QtQuick
import Corvane

FocusScope {
    id: view

    required property WindowModel app
    property string place: "home"

    Loader {
        anchors.fill: parent
        focus: true
        sourceComponent: view.place === "mails" ? mailsPage : homePage
    }

    Component {
        id: homePage
        HomePage {
            app: view.app
        }
    }
    Component {
        id: mailsPage
        MailListPage {
            app: view.app
        }
    }
}
