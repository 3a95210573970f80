// Every control with its states on one page, to be looked at.
import QtQuick
import QtQuick.Layouts
import Corvane

Rectangle {
    id: page
    width: 1240
    height: 840
    color: Theme.surface

    component Caption: AppText {
        role: AppText.Note
        color: Theme.text3
        Layout.topMargin: 8
    }
    component Box: Rectangle {
        color: "transparent"
        border.color: Theme.line
        radius: Theme.radiusLarge
        Layout.fillWidth: true
    }

    RowLayout {
        anchors.fill: parent
        anchors.margins: 24
        anchors.topMargin: 10
        spacing: 28

        ColumnLayout {
            Layout.preferredWidth: 412
            Layout.maximumWidth: 412
            Layout.alignment: Qt.AlignTop
            spacing: 6

            Caption { text: "字号" }
            Row {
                spacing: 16
                AppText { text: "3.16 GB"; role: AppText.Hero }
                AppText { text: "标题 20"; role: AppText.Title; anchors.verticalCenter: parent.verticalCenter }
                AppText { text: "小标题 15"; role: AppText.Heading; anchors.verticalCenter: parent.verticalCenter }
                AppText { text: "正文 13"; anchors.verticalCenter: parent.verticalCenter }
                AppText { text: "注记 12"; role: AppText.Note; anchors.verticalCenter: parent.verticalCenter }
            }
            Caption { text: "边栏项：平常、悬停、按下、选中、选中但窗口不活动、键盘焦点" }
            Rectangle {
                color: Theme.sidebar
                radius: 8
                Layout.fillWidth: true
                implicitHeight: sideItems.implicitHeight + 16
                Grid {
                    id: sideItems
                    x: 8
                    y: 8
                    columns: 2
                    spacing: 4
                    Repeater {
                        model: 6
                        SidebarItem {
                            required property int index
                            width: 196
                            text: "归档库"
                            symbol: "library"
                            figure: "49,871"
                            showHovered: index === 1
                            down: index === 2
                            chosen: index === 3 || index === 4
                            windowActive: index !== 4
                            showFocus: index === 5
                        }
                    }
                }
            }
            Caption { text: "按钮：平常、悬停、按下、焦点、不可用" }
            Row {
                spacing: 6
                Repeater {
                    model: 5
                    PrimaryButton {
                        required property int index
                        implicitHeight: 30
                        horizontalPadding: 12
                        text: "开始归档"
                        showHovered: index === 1
                        down: index === 2
                        showFocus: index === 3
                        enabled: index !== 4
                    }
                }
            }
            Row {
                spacing: 8
                Repeater {
                    model: 5
                    AppButton {
                        required property int index
                        text: "更改…"
                        showHovered: index === 1
                        down: index === 2
                        showFocus: index === 3
                        enabled: index !== 4
                    }
                }
                PlainButton { text: "更改…" }
            }
            Caption { text: "分段、搜索框、三态勾选、选单" }
            Row {
                spacing: 12
                SegmentedControl { options: ["全部", "未归档", "已归档"]; name: "范围" }
                MenuButton { model: ["全部位置", "坚果云"]; symbol: "layers"; anchors.verticalCenter: parent.verticalCenter }
                Row {
                    spacing: 8
                    anchors.verticalCenter: parent.verticalCenter
                    TickBox { tick: 0 }
                    TickBox { tick: 1 }
                    TickBox { tick: 2 }
                    TickBox { enabled: false }
                }
            }
            Row {
                spacing: 8
                SearchField { width: 196; placeholderText: "搜索主题、发件人" }
                SearchField { width: 196; text: "补充协议"; showFocus: true }
            }
            Caption { text: "标签、开关" }
            Row {
                spacing: 6
                Chip { kind: "safe"; symbol: "circle-check"; text: "已归档" }
                Chip { kind: "attention"; symbol: "circle-dashed"; text: "未归档" }
                Chip { kind: "danger"; symbol: "octagon-x"; text: "失败" }
                Chip { symbol: "cloud"; text: "仅在服务器" }
                CountPill { text: "46" }
                FilterChip { text: "2021 年" }
            }
            Caption { text: "提示条：可放心、要留意、有问题、说明" }
            Banner { Layout.fillWidth: true; kind: "safe"; headline: "本地原件都有 .eml 副本" }
            Banner { Layout.fillWidth: true; kind: "attention"; headline: "先完成剩余邮件归档"; lines: ["第一行", "第二行"] }
            Banner { Layout.fillWidth: true; kind: "danger"; headline: "归档位置当前不可用"; AppButton { text: "更改…" } }
            Banner { Layout.fillWidth: true; kind: "info"; headline: "本机有 3 个文件保存着这封邮件"; symbol: "copy" }
        }
        ColumnLayout {
            Layout.preferredWidth: 404
            Layout.alignment: Qt.AlignTop
            spacing: 6

            Caption { text: "列表行：平常、悬停、选中、选中但焦点在别处、键盘所在" }
            Box {
                implicitHeight: rows.implicitHeight + 2
                Column {
                    id: rows
                    x: 1
                    y: 1
                    width: parent.width - 2
                    Repeater {
                        model: 5
                        ListRow {
                            id: row
                            required property int index
                            width: rows.width
                            separated: true
                            showHovered: index === 1
                            selected: index === 2 || index === 3
                            listFocused: index !== 3
                            current: index === 4
                            RowLayout {
                                anchors.fill: parent
                                anchors.leftMargin: 12
                                anchors.rightMargin: 12
                                spacing: 12
                                TickBox { tick: row.index % 3 }
                                AppText { Layout.fillWidth: true; text: "发票与报销单：3 月至 5 月" }
                                AppText { text: "财务部"; color: Theme.text2 }
                                AppText { text: "4.1 MB"; color: row.captionColor }
                            }
                        }
                    }
                }
            }
            Row {
                spacing: 8
                Switch { checked: true }
                Switch { }
                Switch { enabled: false }
            }
            Caption { text: "表头、大小条" }
            Box {
                implicitHeight: 68
                TableHead {
                    x: 1
                    y: 1
                    width: parent.width - 2
                    AppText { x: 12; text: "邮箱、年份与文件夹"; role: AppText.Note; color: Theme.text3; anchors.verticalCenter: parent.verticalCenter }
                }
                DisclosureArrow { x: 12; y: 42; open: true }
                SizeBar { x: 40; y: 47; fraction: 0.7 }
                SizeBar { x: 180; y: 47; fraction: 0.0001 }
            }
            Caption { text: "份额条、进度、统计数" }
            ShareBar {
                Layout.fillWidth: true
                parts: [{ series: "archived", label: "已归档", value: 58, text: "58" },
                    { series: "unarchived", label: "未归档", value: 30, text: "30" },
                    { series: "serverOnly", label: "仅在服务器", value: 12, text: "12" }]
            }
            ShareBar {
                Layout.fillWidth: true
                parts: [{ series: "share1", label: "甲", value: 58, text: "58" },
                    { series: "share2", label: "乙", value: 24, text: "24" },
                    { series: "share3", label: "丙", value: 11, text: "11" },
                    { series: "share4", label: "其它", value: 7, text: "7" }]
            }
            ProgressTrack { Layout.fillWidth: true; value: 0.6 }
            ProgressTrack { Layout.fillWidth: true; indeterminate: true; phase: 0.5 }
            ProgressTrack { Layout.fillWidth: true; value: 0.3; thickness: Theme.progressHeightSidebar }
            RowLayout {
                Layout.fillWidth: true
                spacing: 0
                StatTile { Layout.fillWidth: true; Layout.preferredWidth: 1; first: true; caption: "已归档"; figure: "1,136"; kind: "safe"; line: "445.2 MB" }
                StatTile { Layout.fillWidth: true; Layout.preferredWidth: 1; caption: "已跳过(重复)"; figure: "21"; line: "归档库里已有" }
                StatTile { Layout.fillWidth: true; Layout.preferredWidth: 1; caption: "失败"; figure: "6"; kind: "danger"; line: "原件没有改动" }
            }
            Caption { text: "各年邮件" }
            ChartLegend {
                entries: [{ series: "archived", label: "已归档", text: "23,789" },
                    { series: "unarchived", label: "未归档", text: "12,406" },
                    { series: "serverOnly", label: "仅在服务器", text: "3,127" }]
            }
            YearChart {
                Layout.fillWidth: true
                chosenYear: 2017
                years: [2013, 2014, 2015, 2016, 2017, 2018, 2019].map((year, i) => ({
                    year: year, archived: 3540 - i * 580, unarchived: i > 2 ? i * 420 : 0, serverOnly: i * 40,
                    ticked: i === 3 || i === 4
                }))
            }
        }
        ColumnLayout {
            Layout.preferredWidth: 320
            Layout.fillWidth: true
            Layout.alignment: Qt.AlignTop
            spacing: 6

            Caption { text: "读数" }
            ReadOut {
                title: "2021 年"
                rows: [{ series: "archived", label: "已归档", text: "402" },
                    { series: "unarchived", label: "未归档", text: "2,316" },
                    { series: "serverOnly", label: "仅在服务器", text: "417" }]
            }
            Caption { text: "图标" }
            Flow {
                Layout.fillWidth: true
                spacing: 10
                Repeater {
                    model: ["archive", "mail", "folder", "circle-check", "cloud", "hard-drive", "unplug", "shield-check",
                        "triangle-alert", "octagon-x", "info", "refresh-cw", "list-filter", "chart-pie", "externaldrive", "no-such"]
                    Symbol {
                        required property string modelData
                        name: modelData
                        size: 20
                        color: Theme.text1
                    }
                }
            }
            Row {
                spacing: 8
                IconButton { symbol: "arrow-down-wide-narrow"; help: "排序" }
                IconButton { symbol: "refresh-cw"; help: "更新"; bare: true }
                AppButton { symbol: "refresh-cw"; text: "更新 Mail 数据" }
                AppButton { symbol: "refresh-cw"; text: "正在更新"; enabled: false }
            }
            Caption { text: "空状态" }
            Box {
                implicitHeight: 380
                EmptyState {
                    anchors.centerIn: parent
                    width: parent.width - 32
                    symbol: "mail-search"
                    symbolColor: Theme.accent
                    title: "先更新所有 Mail 数据"
                    line: "更新后这里会按邮箱和年份列出待归档邮件。"
                    buttonText: "更新 Mail 数据"
                    steps: [{ title: "更新 Mail 数据", line: "读出每个邮箱、每一年的邮件。" }, { title: "选择归档位置" }]
                }
            }
            Box {
                implicitHeight: 120
                ScreenHead {
                    width: parent.width
                    title: "归档邮件"
                    subtitle: "12,406 封需要放入归档库。"
                    AppButton { text: "更新" }
                }
            }
        }
    }
}
