// The filters of the mail list: accounts, attachments, years. A pane of the screen or, where that has no room, what
// the filter button opens.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Corvane

FocusGroup {
    id: pane

    required property MailListFilters filters
    readonly property var attachmentSteps: [0, 1, 3, 5]
    readonly property real contentHeight: scroller.contentHeight

    horizontal: false

    component Heading: Item {
        property alias text: headingLabel.text
        default property alias content: headingHolder.data

        width: parent.width
        height: Theme.minimumTarget

        AppText {
            id: headingLabel
            anchors.verticalCenter: parent.verticalCenter
            font.weight: Theme.strong
            Accessible.role: Accessible.Heading
        }
        Item {
            id: headingHolder
            anchors.fill: parent
        }
    }

    FocusScroller {
        id: scroller
        anchors.fill: parent
        marginRight: Theme.section
        gap: 12

        Column {
            id: sections
            Layout.fillWidth: true
            Layout.topMargin: 12

            FilterTickRow {
                objectName: "troubledFilter"
                width: parent.width
                title: "只看有问题的邮件"
                countText: pane.filters.troubledCountText
                ticked: pane.filters.onlyTroubled
                onClicked: pane.filters.onlyTroubled = !ticked
            }
            Item {
                width: 1
                height: 12
            }
            Heading {
                text: "邮箱"
            }
            Repeater {
                model: pane.filters.accounts
                delegate: FilterTickRow {
                    required property int index
                    objectName: "accountFilter" + index
                    width: sections.width
                    onClicked: pane.filters.toggleAccount(index)
                }
            }
            Item {
                width: 1
                height: 12
            }
            Heading {
                text: "附件"
            }
            Item {
                width: parent.width
                height: Theme.controlHeight

                AppText {
                    anchors.verticalCenter: parent.verticalCenter
                    text: "至少"
                }
                SegmentedControl {
                    objectName: "attachmentFilter"
                    anchors.right: parent.right
                    anchors.verticalCenter: parent.verticalCenter
                    implicitHeight: Theme.controlHeightPane
                    segmentPadding: 9
                    name: "附件数量至少"
                    options: pane.attachmentSteps.map(step => step.toString())
                    currentIndex: pane.attachmentSteps.indexOf(pane.filters.minimumAttachments)
                    onActivated: index => pane.filters.minimumAttachments = pane.attachmentSteps[index]
                }
            }
            Item {
                width: 1
                height: 12
            }
            Heading {
                text: "年份"

                PlainButton {
                    objectName: "clearYears"
                    anchors.right: parent.right
                    anchors.rightMargin: -horizontalPadding
                    anchors.verticalCenter: parent.verticalCenter
                    implicitHeight: Theme.minimumTarget
                    visible: pane.filters.years.narrows
                    labelRole: AppText.Note
                    text: "清除"
                    help: "不按年份筛选"
                    onClicked: pane.filters.years.clear()
                }
            }
            FilterTickRow {
                objectName: "cutoffFilter"
                width: parent.width
                title: "只看 " + pane.filters.years.cutoff + " 年及以前"
                countText: ""
                ticked: pane.filters.years.onlyBeforeCutoff
                onClicked: pane.filters.years.onlyBeforeCutoff = !ticked
            }
            Item {
                width: parent.width
                height: 9

                Rectangle {
                    y: 4
                    width: parent.width
                    height: Theme.hairline
                    color: Theme.line
                }
            }
            Repeater {
                model: pane.filters.years.options
                delegate: FilterTickRow {
                    required property int index
                    objectName: "yearFilter" + index
                    width: sections.width
                    onClicked: pane.filters.years.toggle(index)
                }
            }
        }
    }
}
