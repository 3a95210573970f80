// The screen 邮件列表.
import QtQuick
import Corvane

ScreenPage {
    objectName: "mailListPage"
}
