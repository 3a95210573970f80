// A sheet keeps the keyboard and gives it back.
import QtQuick
import QtTest
import Corvane

Item {
    id: page
    width: 800
    height: 600

    // Asked here so that it watches the keys.
    readonly property bool keyboardInUse: KeyboardFocus.inUse

    AppButton { id: opener; text: "打开"; onClicked: sheet.open() }
    AppButton { id: follower; x: 200; text: "下一步" }
    ConfirmSheet {
        id: sheet
        title: "问题"
        line: "一行"
        TickBox { id: inside; name: "里面" }
    }
    Sheet {
        id: tall
        title: "很长"
        AppButton { id: tallButton; text: "很长的" }
        Repeater {
            model: 100
            AppText { required property int index; text: "第 " + index + " 行" }
        }
        AppButton { id: lastButton; text: "最后的" }
    }
    SignalSpy { id: accepted; target: sheet; signalName: "accepted" }
    SignalSpy { id: rejected; target: sheet; signalName: "rejected" }
    SignalSpy { id: behind; target: opener; signalName: "clicked" }

    TestCase {
        name: "Sheet"
        when: windowShown

        function init() {
            KeyboardFocus.freshKeyPause = 0;
            sheet.dismissable = true;
            opener.visible = true;
            opener.enabled = true;
            opener.forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Space);
            tryVerify(() => sheet.opened);
            accepted.clear();
            rejected.clear();
            behind.clear();
        }
        function cleanup() {
            tallButton.forceActiveFocus();
            tall.close();
            sheet.urgent = false;
            sheet.close();
            tryVerify(() => !sheet.visible);
        }

        function test_TabStaysInside() {
            for (let i = 0; i < 7; ++i) {
                verify(!opener.activeFocus);
                keyClick(Qt.Key_Tab);
            }
            mouseClick(page, 10, 10);
            compare(behind.count, 0);
            verify(sheet.opened);
        }

        function test_EscapeClosesAndGivesTheFocusBack_OnlyWhereItMay() {
            sheet.dismissable = false;
            keyClick(Qt.Key_Escape);
            wait(0);
            verify(sheet.opened);
            sheet.dismissable = true;
            keyClick(Qt.Key_Escape);
            tryVerify(() => !sheet.visible);
            compare(rejected.count, 1);
            verify(opener.activeFocus);
        }

        function test_AKeyMeantForWhatWasBeforeIsNotTaken() {
            KeyboardFocus.freshKeyPause = 500;
            KeyboardFocus.awaitFreshKey();
            keyClick(Qt.Key_Return);
            keyClick(Qt.Key_Space);
            compare(accepted.count, 0);
            verify(sheet.opened);
            wait(510);
            keyClick(Qt.Key_Return);
            compare(accepted.count, 1);
        }

        function test_ReturnAnswersFromAnywhereInside() {
            inside.forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Return);
            compare(accepted.count, 1);
            tryVerify(() => !sheet.visible);
            compare(rejected.count, 0);
        }

        function test_SecondSheetTakesThePlace_AndGivesItBackAsItWas() {
            inside.forceActiveFocus(Qt.TabFocusReason);
            tall.open();
            tryVerify(() => tall.opened);
            verify(sheet.waits);
            verify(!inside.enabled, "out of the reach of a screen reader");
            for (let i = 0; i < 3; ++i) {
                verify(tallButton.activeFocus);
                keyClick(Qt.Key_Tab);
                verify(lastButton.activeFocus);
                keyClick(Qt.Key_Tab);
            }
            keyClick(Qt.Key_Return);
            compare(accepted.count, 0);
            keyClick(Qt.Key_Escape);
            tryVerify(() => !tall.visible);
            verify(!sheet.waits);
            verify(inside.activeFocus);
            verify(inside.showFocus);
            keyClick(Qt.Key_Escape);
            tryVerify(() => !sheet.visible);
            verify(opener.activeFocus);
        }

        function test_UrgentSheetStays_AndTheOneThatCameMeanwhileFollows() {
            sheet.urgent = true;
            tall.open();
            tryVerify(() => tall.opened);
            verify(!sheet.waits);
            verify(tall.waits);
            keyClick(Qt.Key_Return);
            compare(accepted.count, 1);
            tryVerify(() => !sheet.visible);
            verify(!tall.waits);
            verify(tallButton.activeFocus);
            keyClick(Qt.Key_Escape);
            tryVerify(() => !tall.visible);
            verify(opener.activeFocus);
        }

        function test_SheetThatLeavesBelowAnother_LeavesItTheKeyboard() {
            tall.open();
            tryVerify(() => tall.opened);
            sheet.close();
            tryVerify(() => !sheet.visible);
            verify(tallButton.activeFocus);
            keyClick(Qt.Key_Escape);
            tryVerify(() => !tall.visible);
            verify(opener.activeFocus);
        }

        function test_WhatOpenedTheSheetHasGone_TheNextHasTheKeyboard_data() {
            return [{ tag: "hidden", property: "visible" }, { tag: "disabled", property: "enabled" }];
        }
        function test_WhatOpenedTheSheetHasGone_TheNextHasTheKeyboard(data) {
            opener[data.property] = false;
            keyClick(Qt.Key_Escape);
            tryVerify(() => !sheet.visible);
            verify(follower.activeFocus);
            verify(follower.showFocus);
        }

        function test_KeysScrollWhatDoesNotFit() {
            tall.open();
            tryVerify(() => tall.opened && lastButton.mapToItem(page, 0, 0).y > 600);
            verify(tall.height <= 600 - 32);
            keyClick(Qt.Key_End);
            verify(lastButton.mapToItem(page, 0, 0).y < 600);
            keyClick(Qt.Key_Home);
            verify(lastButton.mapToItem(page, 0, 0).y > 600);
            keyClick(Qt.Key_PageDown);
            keyClick(Qt.Key_Tab);
            verify(lastButton.activeFocus);
            verify(lastButton.mapToItem(page, 0, lastButton.height).y < 600, "what gets the keyboard comes into view");
        }
    }
}
