// Mail a year above the library's list, within the present filters: a click narrows to a year, a drag to a span. The
// figures of the year under the pointer or the keyboard stand in its own head, so that nothing covers the list.
pragma ComponentBehavior: Bound

import QtQuick
import Corvane

FocusScope {
    id: strip

    required property LibraryFilterMenus filters
    readonly property var years: filters.years
    readonly property int count: years.length
    property int hovered: -1
    // Where the keyboard is, and where its span began.
    property int keyYear: -1
    property int keyAnchor: -1
    property int dragFrom: -1
    property int dragTo: -1
    readonly property real columnWidth: count > 0 ? plot.width / count : 0
    readonly property int labelEvery: Math.max(1, Math.ceil(count / 13))
    readonly property real most: years.reduce((most, each) => Math.max(most, each.count), 1)
    readonly property int shownYear: hovered >= 0 ? hovered : activeFocus ? keyYear : -1
    readonly property int chosenFirst: dragFrom >= 0 ? Math.min(dragFrom, dragTo)
        : keyAnchor >= 0 && activeFocus ? Math.min(keyAnchor, keyYear)
        : filters.firstYear < 0 || count === 0 ? -1 : filters.firstYear - years[0].year
    readonly property int chosenLast: dragFrom >= 0 ? Math.max(dragFrom, dragTo)
        : keyAnchor >= 0 && activeFocus ? Math.max(keyAnchor, keyYear)
        : filters.firstYear < 0 || count === 0 ? -1 : filters.lastYear - years[0].year

    function columnAt(x: real): int {
        return Math.max(0, Math.min(count - 1, Math.floor(x / columnWidth)));
    }
    function choose(first: int, last: int) {
        if (count > 0)
            filters.chooseYears(years[first].year, years[last].year);
    }
    function goByKey(year: int, widens: bool) {
        if (!widens)
            keyAnchor = -1;
        else if (keyAnchor < 0)
            keyAnchor = Math.max(0, keyYear);
        keyYear = Math.max(0, Math.min(count - 1, year));
    }
    function chooseByKey() {
        if (keyYear >= 0)
            choose(keyAnchor >= 0 ? keyAnchor : keyYear, keyYear);
        keyAnchor = -1;
    }

    objectName: "yearStrip"
    implicitHeight: 116
    activeFocusOnTab: true
    Accessible.role: Accessible.Chart
    Accessible.name: "各年邮件" + (shownYear >= 0 && shownYear < count ? "，" + years[shownYear].text : "")
    Keys.onPressed: event => {
        const places = { [Qt.Key_Left]: keyYear - 1, [Qt.Key_Right]: keyYear + 1, [Qt.Key_Home]: 0,
            [Qt.Key_End]: count - 1 };
        event.accepted = event.key in places;
        if (event.accepted)
            goByKey(places[event.key], event.modifiers & Qt.ShiftModifier);
    }
    Keys.onReturnPressed: chooseByKey()
    Keys.onEnterPressed: chooseByKey()
    onActiveFocusChanged: {
        if (activeFocus && keyYear < 0)
            keyYear = chosenLast >= 0 && chosenLast < count ? chosenLast : count - 1;
    }
    Keys.onEscapePressed: event => {
        event.accepted = filters.firstYear >= 0 || keyAnchor >= 0;
        keyAnchor = -1;
        filters.clearYears();
    }
    onCountChanged: {
        keyYear = -1;
        keyAnchor = -1;
        dragFrom = -1;
    }

    AppText {
        x: Theme.section
        y: 9
        text: "各年邮件"
        role: AppText.Note
        color: Theme.text3
    }
    AppText {
        objectName: "yearFigures"
        anchors.right: parent.right
        anchors.rightMargin: Theme.section
        y: 9
        role: AppText.Note
        text: strip.shownYear >= 0 && strip.shownYear < strip.count ? strip.years[strip.shownYear].text
            : strip.filters.undatedText
        color: strip.shownYear >= 0 ? Theme.text1 : Theme.text3
    }
    Item {
        id: plot
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.leftMargin: Theme.section
        anchors.rightMargin: Theme.section
        y: 32
        height: 80

        Rectangle {
            visible: strip.chosenFirst >= 0 && strip.chosenFirst < strip.count
            x: strip.chosenFirst * strip.columnWidth
            width: (strip.chosenLast - strip.chosenFirst + 1) * strip.columnWidth
            height: parent.height
            color: Theme.accentBackground
            Rectangle {
                width: Theme.hairline
                height: parent.height
                color: Theme.accent
            }
            Rectangle {
                anchors.right: parent.right
                width: Theme.hairline
                height: parent.height
                color: Theme.accent
            }
        }
        Repeater {
            // By number: columns stay while their figures change.
            model: strip.count
            delegate: Item {
                id: column
                required property int index
                readonly property var figures: strip.years[index] ?? ({ year: 0, count: 0 })
                readonly property bool chosen: index >= strip.chosenFirst && index <= strip.chosenLast
                objectName: "stripYear" + figures.year
                x: index * strip.columnWidth
                width: strip.columnWidth
                height: plot.height

                Rectangle {
                    anchors.horizontalCenter: parent.horizontalCenter
                    y: 56 - height
                    width: Math.max(2, Math.min(16, strip.columnWidth - 4))
                    height: column.figures.count === 0 ? 0 : Math.max(2, 50 * column.figures.count / strip.most)
                    color: Theme.seriesArchived
                    opacity: strip.chosenFirst >= 0 && !column.chosen ? 0.55 : 1
                }
                AppText {
                    anchors.horizontalCenter: parent.horizontalCenter
                    y: 60
                    visible: (strip.count - 1 - column.index) % strip.labelEvery === 0
                    text: ("0" + column.figures.year % 100).slice(-2)
                    role: AppText.Note
                    font.weight: column.chosen ? Theme.strong : Theme.regular
                    color: column.chosen ? Theme.accent : Theme.text3
                    Accessible.ignored: true
                }
                FocusRing {
                    shown: strip.activeFocus && KeyboardFocus.inUse && strip.keyYear === column.index
                    inside: true
                }
            }
        }
        Rectangle {
            y: 56
            width: parent.width
            height: Theme.hairline
            color: Theme.line
        }
        MouseArea {
            anchors.fill: parent
            hoverEnabled: true
            preventStealing: true
            onPositionChanged: event => {
                strip.hovered = strip.count > 0 ? strip.columnAt(event.x) : -1;
                if (pressed && strip.dragFrom >= 0)
                    strip.dragTo = strip.hovered;
            }
            onExited: strip.hovered = -1
            onPressed: event => {
                if (strip.count === 0)
                    return;
                strip.dragFrom = strip.columnAt(event.x);
                strip.dragTo = strip.dragFrom;
            }
            onReleased: {
                const first = strip.dragFrom;
                const last = strip.dragTo;
                strip.dragFrom = -1;
                if (first >= 0)
                    strip.choose(first, last);
            }
            onCanceled: strip.dragFrom = -1
        }
    }
    Rectangle {
        anchors.bottom: parent.bottom
        width: parent.width
        height: Theme.hairline
        color: Theme.line
    }
}
