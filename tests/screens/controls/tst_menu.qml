// A menu by keys: arrows choose a row, Return, Enter and Space act on it, Escape leaves.
import QtQuick
import QtTest
import Corvane

Item {
    id: page
    readonly property bool keyboardInUse: KeyboardFocus.inUse
    width: 600
    height: 400

    property var acted: []

    AppButton { id: opener; text: "打开"; onClicked: menu.popup(opener, 0, opener.height) }
    AppMenu {
        id: menu
        AppMenuRow { text: "零"; enabled: false; onTriggered: page.acted.push(0) }
        AppMenuRow { text: "一"; onTriggered: page.acted.push(1) }
        AppMenuRow { text: "二"; enabled: false; onTriggered: page.acted.push(2) }
        AppMenuRow { text: "三"; onTriggered: page.acted.push(3) }
    }

    MenuButton {
        id: choice
        x: 200
        model: ["甲", "乙", "丙"]
    }

    TestCase {
        name: "Menu"
        when: windowShown

        function init() {
            page.acted = [];
            opener.forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Return);
            tryVerify(() => menu.opened);
        }
        function cleanup() {
            menu.close();
            tryVerify(() => !menu.visible);
        }

        function keys() {
            return [
                { tag: "Return", key: Qt.Key_Return },
                { tag: "Enter", key: Qt.Key_Enter },
                { tag: "Space", key: Qt.Key_Space },
            ];
        }
        function test_KeyActsOnTheRow_OnceAndClosesTheMenu_data() { return keys(); }
        function test_KeyActsOnTheRow_OnceAndClosesTheMenu(data) {
            keyClick(Qt.Key_Down);
            keyClick(data.key);
            compare(page.acted, [3]);
            tryVerify(() => !menu.visible);
            verify(opener.activeFocus);
        }

        function test_OpenedByAKey_BeginsAtTheFirstRowThatCanAct_data() { return keys(); }
        function test_OpenedByAKey_BeginsAtTheFirstRowThatCanAct(data) {
            keyClick(data.key);
            compare(page.acted, [1]);
        }

        function test_OpenedByThePointer_BeginsAtNoRow() {
            cleanup();
            mouseClick(opener);
            tryVerify(() => menu.opened);
            keyClick(Qt.Key_Return);
            compare(page.acted, []);
            verify(menu.opened);
        }

        function test_KeyTakesTheChoice_data() { return keys(); }
        function test_KeyTakesTheChoice(data) {
            cleanup();
            choice.currentIndex = 0;
            choice.forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Space);
            tryVerify(() => choice.popup.opened);
            keyClick(Qt.Key_Down);
            keyClick(Qt.Key_Down);
            keyClick(data.key);
            tryVerify(() => !choice.popup.visible);
            compare(choice.currentIndex, 2);
        }
    }
}
