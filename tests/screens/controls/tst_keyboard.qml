// Tab goes from group to group, arrows inside one; rings are for the keyboard.
import QtQuick
import QtTest
import Corvane

Item {
    id: page
    readonly property bool keyboardInUse: KeyboardFocus.inUse
    width: 600
    height: 400

    FocusGroup {
        id: first
        width: 600
        height: 40
        Row {
            AppButton { id: one; text: "一" }
            AppButton { id: two; text: "二" }
            AppButton { id: off; text: "不可用"; enabled: false }
            AppButton { id: three; text: "三" }
        }
    }
    FocusGroup {
        id: second
        y: 60
        width: 600
        height: 40
        horizontal: false
        Column {
            AppButton { id: upper; text: "上" }
            AppButton { id: lower; text: "下" }
        }
    }
    SearchField { id: field; y: 160; placeholderText: "搜索" }

    TestCase {
        name: "Keyboard"
        when: windowShown

        function init() {
            field.text = "";
            upper.focus = true;
            one.forceActiveFocus(Qt.TabFocusReason);
        }

        function test_TabLeavesTheGroup_AndComesBackToWhereItWas() {
            keyClick(Qt.Key_Right);
            verify(two.activeFocus);
            keyClick(Qt.Key_Tab);
            verify(upper.activeFocus);
            keyClick(Qt.Key_Tab);
            verify(field.activeFocus);
            keyClick(Qt.Key_Backtab);
            verify(upper.activeFocus);
            keyClick(Qt.Key_Backtab);
            verify(two.activeFocus);
        }

        function test_ArrowsStayInTheGroup_AndPassOverDisabledControls() {
            keyClick(Qt.Key_Left);
            verify(one.activeFocus);
            keyClick(Qt.Key_Right);
            keyClick(Qt.Key_Right);
            verify(three.activeFocus);
            keyClick(Qt.Key_Right);
            verify(three.activeFocus);
            keyClick(Qt.Key_Tab);
            keyClick(Qt.Key_Right);
            verify(upper.activeFocus);
            keyClick(Qt.Key_Down);
            verify(lower.activeFocus);
        }

        function test_RingIsForTheKeyboardOnly() {
            verify(one.showFocus);
            mouseClick(two);
            verify(!two.showFocus);
            keyClick(Qt.Key_Right);
            verify(KeyboardFocus.inUse);
            mouseClick(page, 590, 390);
            verify(!KeyboardFocus.inUse);
        }

        function test_ReturnAndSpacePressTheButton() {
            const presses = createTemporaryQmlObject("import QtTest; SignalSpy {}", page);
            presses.target = one;
            presses.signalName = "clicked";
            keyClick(Qt.Key_Return);
            keyClick(Qt.Key_Space);
            compare(presses.count, 2);
        }

        function test_EscapeClearsTheSearchThenLeavesIt() {
            const left = createTemporaryQmlObject("import QtTest; SignalSpy {}", page);
            left.target = field;
            left.signalName = "leaving";
            const asked = createTemporaryQmlObject("import QtTest; SignalSpy {}", page);
            asked.target = field;
            asked.signalName = "listRequested";
            field.forceActiveFocus();
            keyClick("a");
            keyClick(Qt.Key_Down);
            compare(asked.count, 1);
            compare(field.text, "a");
            keyClick(Qt.Key_Escape);
            compare(field.text, "");
            compare(left.count, 0);
            keyClick(Qt.Key_Escape);
            compare(left.count, 1);
        }
    }
}
