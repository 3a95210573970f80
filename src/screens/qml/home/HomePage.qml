// The screen 归档邮件.
import QtQuick
import Corvane

ScreenPage {
    objectName: "homePage"
}
