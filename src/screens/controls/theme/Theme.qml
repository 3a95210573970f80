// Every colour, size and duration of the window. No screen names one of its own.
pragma Singleton

import QtQuick
import Corvane

QtObject {
    id: theme

    readonly property bool dark: Appearance.dark

    // Backgrounds and lines
    readonly property color surface: dark ? "#1E1F22" : "#FFFFFF"
    readonly property color page: dark ? "#191A1C" : "#F7F7F6"
    readonly property color sidebar: dark ? "#27282B" : "#EFF0F1"
    readonly property color sheet: dark ? "#28292D" : "#FFFFFF"
    readonly property color control: dark ? "#34363B" : "#FFFFFF"
    readonly property color inset: dark ? "#313337" : "#E9EAEC"
    readonly property color hover: dark ? "#26272B" : "#F3F4F5"
    readonly property color sideHover: dark ? "#303236" : "#E5E7E9"
    readonly property color controlHover: dark ? "#3E4046" : "#F3F4F5"
    readonly property color pressed: dark ? "#3F4247" : "#DDDFE2"
    readonly property color selection: dark ? "#2A3F62" : "#D5E3F8"
    readonly property color selectionInactive: dark ? "#393B40" : "#E3E4E7"
    readonly property color scrim: dark ? "#85000000" : "#5716181C"
    readonly property color line: dark ? "#35373B" : "#DFE1E4"
    readonly property color lineStrong: dark ? "#4A4D52" : "#C6C9CD"
    readonly property color controlLine: dark ? "#868B92" : "#868B91"

    // Text
    readonly property color text1: dark ? "#ECEDEF" : "#1D1F22"
    readonly property color text2: dark ? "#BCC0C5" : "#4B5056"
    readonly property color text3: dark ? "#A9AEB4" : "#5E6369"
    readonly property color disabled: dark ? "#6B7076" : "#9A9FA5"
    readonly property color textOnAccent: "#FFFFFF"

    // Meaning
    readonly property color accent: dark ? "#8DB4F5" : "#2A5DB8"
    readonly property color accentFill: dark ? "#3D70CB" : "#2A5DB8"
    readonly property color accentFillHover: dark ? "#4174CE" : "#2452A4"
    readonly property color accentFillPressed: dark ? "#335FB0" : "#1E468C"
    readonly property color accentBackground: dark ? "#222E42" : "#EAF1FC"
    readonly property color safe: dark ? "#72C69D" : "#1A6A48"
    readonly property color safeBackground: dark ? "#1F3028" : "#EAF4EE"
    readonly property color safeLine: dark ? "#35574A" : "#B9D8C7"
    readonly property color attention: dark ? "#E6B567" : "#865000"
    readonly property color attentionBackground: dark ? "#342B1B" : "#FDF4E3"
    readonly property color attentionLine: dark ? "#5F4E2B" : "#EAD09E"
    readonly property color danger: dark ? "#F49A93" : "#AE2A22"
    readonly property color dangerBackground: dark ? "#3B2624" : "#FCEDEB"
    readonly property color dangerLine: dark ? "#6D423E" : "#EBC0BC"
    readonly property color searchMark: dark ? "#75641A" : "#FFE985"

    // Chart series
    readonly property color seriesArchived: dark ? "#4FA9A3" : "#1F6B73"
    readonly property color seriesUnarchived: dark ? "#E8A845" : "#CC8114"
    readonly property color seriesServerOnly: dark ? "#3A3D42" : "#E4E6E9"
    readonly property color seriesServerOnlyLine: dark ? "#8E949B" : "#7F858C"
    readonly property color track: dark ? "#3A3D42" : "#E4E6E9"
    readonly property color bar: dark ? "#5E7FB5" : "#7093CA"
    readonly property color share1: dark ? "#86AFF3" : "#2F5C9E"
    readonly property color share2: dark ? "#5F87C6" : "#6F94CB"
    readonly property color share3: dark ? "#41608F" : "#A6BEE2"
    readonly property color share4: dark ? "#33465F" : "#D5E0F0"

    // Type: size and line in device-independent pixels
    readonly property int heroSize: 30
    readonly property int heroLine: 38
    readonly property int titleSize: 20
    readonly property int titleLine: 28
    readonly property int headingSize: 15
    readonly property int headingLine: 22
    readonly property int bodySize: 13
    readonly property int bodyLine: 20
    readonly property int messageLine: 22
    readonly property int noteSize: 12
    readonly property font fieldFont: Appearance.windowFont(bodySize)
    readonly property int noteLine: 18
    readonly property int regular: Font.Normal
    readonly property int medium: Font.Medium
    readonly property int strong: Font.DemiBold
    // Two sentences of a remark break at the full stop.
    readonly property int bodyMeasure: 520
    readonly property int noteMeasure: 456
    readonly property int messageMeasure: 640

    // Space, corners, lines
    readonly property int half: 4
    readonly property int space: 8
    readonly property int section: 16
    readonly property int margin: 24
    readonly property int marginNarrow: 16
    readonly property int radiusInner: 4
    readonly property int radiusSmall: 6
    readonly property int radiusLarge: 8
    readonly property int radiusSheet: 10
    readonly property int radiusBar: 2
    readonly property real hairline: Appearance.hairline
    readonly property int ring: 2
    readonly property int selectionEdge: 3

    // Below these the layout gives way.
    readonly property int narrowBelow: 1120
    readonly property int lowBelow: 660

    // Sizes
    readonly property int windowWidth: 1240
    readonly property int windowHeight: 840
    readonly property int windowMinimumWidth: 1000
    readonly property int windowMinimumHeight: 560
    readonly property int sidebarWidth: 216
    readonly property int sidebarWidthNarrow: 192
    readonly property int headHeight: 72
    readonly property int headHeightLow: 56
    readonly property int toolbarHeight: 45
    readonly property int controlHeight: 30
    readonly property int controlHeightPane: 28
    readonly property int controlHeightPrimary: 36
    readonly property int sidebarItemHeight: 34
    readonly property int sidebarItemHeightLow: 32
    readonly property int rowDense: 32
    readonly property int rowRegular: 52
    readonly property int rowSnippet: 72
    readonly property int rowFull: 76
    readonly property int treeAccountRow: 36
    readonly property int treeYearRow: 32
    readonly property int treeFolderRow: 30
    readonly property int treeYearIndent: 16
    readonly property int treeFolderIndent: 34
    // In a wide window the figures stay near their names, and the size bars grow instead.
    readonly property int treeMeasure: 880
    readonly property int treeBarMeasure: 400
    readonly property int tableHeadHeight: 32
    readonly property int chipHeight: 20
    readonly property int pillHeight: 18
    readonly property int tickBoxSize: 16
    readonly property int shareBarHeight: 14
    readonly property int shareBarHeightSmall: 5
    readonly property int sizeBarHeight: 6
    readonly property int progressHeight: 6
    readonly property int progressHeightRun: 8
    readonly property int progressHeightSidebar: 3
    readonly property int bottomBarHeight: 76
    readonly property int minimumTarget: 28

    // Motion in milliseconds
    readonly property bool moves: !Appearance.reducedMotion
    readonly property int colourDuration: moves ? 80 : 0
    readonly property int sheetInDuration: moves ? 160 : 0
    readonly property int sheetOutDuration: moves ? 120 : 0
    readonly property int changeDuration: moves ? 120 : 0
    readonly property int sheetTravel: moves ? 12 : 0
    readonly property int indeterminatePass: 1600
    readonly property int tooltipDelay: 600

    // By AppText.Role: hero, title, heading, body, note.
    readonly property var textSizes: [heroSize, titleSize, headingSize, bodySize, noteSize]
    readonly property var textLines: [heroLine, titleLine, headingLine, bodyLine, noteLine]
    readonly property var textWeights: [strong, strong, strong, regular, regular]

    // Colours of a kind of statement: "safe", "attention", "danger"; anything else is neutral.
    function toneText(kind: string): color {
        return kind === "safe" ? safe : kind === "attention" ? attention : kind === "danger" ? danger : text1;
    }
    function toneBackground(kind: string): color {
        return kind === "safe" ? safeBackground : kind === "attention" ? attentionBackground
            : kind === "danger" ? dangerBackground : page;
    }
    function toneLine(kind: string): color {
        return kind === "safe" ? safeLine : kind === "attention" ? attentionLine
            : kind === "danger" ? dangerLine : line;
    }

    // Looks of a chart's series: "archived", "unarchived", "serverOnly", "share1" to "share4".
    function seriesFill(series: string): color {
        switch (series) {
        case "archived":
            return seriesArchived;
        case "unarchived":
            return seriesUnarchived;
        case "serverOnly":
            return seriesServerOnly;
        case "share1":
            return share1;
        case "share2":
            return share2;
        case "share3":
            return share3;
        default:
            return share4;
        }
    }
    function seriesHasLine(series: string): bool {
        return series === "serverOnly" || series === "share4";
    }
    function seriesLine(series: string): color {
        return series === "serverOnly" ? seriesServerOnlyLine : share2;
    }
}
