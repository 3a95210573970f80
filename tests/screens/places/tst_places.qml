// Archive places, settings that travel and address collections, as a user has them before them.
import QtQuick
import QtQuick.Window
import QtTest
import Corvane
import "../support"

WindowUnderTest {
    id: root

    TestCase {
        name: "Places"
        when: windowShown

        function init() {
            root.begin(true);
            waitForRendering(root.view);
        }
        function cleanup() {
            scenes.settle();
        }
        function part(name: string): Item {
            const found = findChild(root.view, name) ?? findChild(root.overlay, name);
            verify(found, name);
            return found;
        }
        function isInSidebar(): bool {
            for (let at = root.Window.activeFocusItem; at; at = at.parent) {
                if (at.objectName === "sidebar")
                    return true;
            }
            return false;
        }
        // By keys alone: the button of the menu, and the row of it.
        function openByMenu(row: int) {
            part("settingsMenuButton").forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Return);
            const menu = findChild(root.view, "settingsMenu");
            tryCompare(menu, "opened", true);
            for (let step = 0; step < row; ++step)
                keyClick(Qt.Key_Down);
            keyClick(Qt.Key_Return);
            tryCompare(menu, "visible", false);
        }

        function test_AKeyOfAPlaceLeadsIntoItsScreen() {
            for (const number of [2, 4, 5, 1]) {
                part("place-home").forceActiveFocus(Qt.TabFocusReason);
                verify(isInSidebar());
                keyClick(Qt.Key_0 + number, Qt.ControlModifier);
                scenes.settle();
                waitForRendering(root.view);
                tryVerify(() => !isInSidebar(), 2000, "place " + number);
                verify(KeyboardFocus.isHeldIn(root.view), "place " + number);
            }
        }
        function test_SettingsGoOutAndComeBackOnlyAfterAWord() {
            openByMenu(2);
            tryCompare(findChild(root.view, "exportSheet"), "opened", true);
            scenes.settle();
            tryVerify(() => part("useBackupFolder").enabled);
            keyClick(Qt.Key_Escape);
            tryVerify(() => part("settingsMenuButton").activeFocus);
            const travel = scenes.app.settings;
            const file = "file://" + scenes.makeFolders("出", 1) + "/a.corvanebackup";
            travel.exportTo(file);
            scenes.settle();
            tryCompare(part("settingsDone"), "activeFocus", true);
            verify(part("settingsResultText").text.startsWith("配置已导出到「a.corvanebackup」。"));
            keyClick(Qt.Key_Return);
            tryCompare(travel, "step", SettingsTravel.Closed);

            travel.importFrom(file);
            scenes.settle();
            tryCompare(part("rejectSettings"), "activeFocus", true);
            keyClick(Qt.Key_Return);
            tryCompare(travel, "step", SettingsTravel.Closed);
            compare(travel.result, "");
            travel.importFrom(file);
            scenes.settle();
            tryCompare(findChild(root.view, "settingsQuestion"), "opened", true);
            mouseClick(part("acceptSettings"));
            scenes.settle();
            tryVerify(() => part("settingsResultText").text === "已从备份恢复配置。");
            travel.close();
        }
        function test_APlaceIsVerifiedInItsRow_AndForgottenOnlyAfterAWord() {
            openByMenu(0);
            const sheet = findChild(root.view, "placesSheet");
            tryCompare(sheet, "opened", true);
            scenes.settle();
            tryCompare(part("placesDone"), "activeFocus", true);
            tryCompare(part("placeState"), "text", "已连接");
            mouseClick(part("verifyPlace"));
            scenes.settle();
            // All records of the sample name one file.
            tryVerify(() => part("reportTitle").text.indexOf("完好，1 个文件有问题") > 0);
            sheet.askToForget(0);
            tryCompare(findChild(root.view, "forgetQuestion"), "opened", true);
            tryCompare(part("rejectButton"), "activeFocus", true);
            keyClick(Qt.Key_Return);
            verify(scenes.app.destination.isChosen);
            sheet.askToForget(0);
            tryCompare(findChild(root.view, "forgetQuestion"), "opened", true);
            mouseClick(part("acceptButton"));
            scenes.settle();
            verify(!scenes.app.destination.isChosen);
        }
        function test_AGroupIsNamedFilledAndSaved() {
            keyClick(Qt.Key_2, Qt.ControlModifier);
            scenes.settle();
            scenes.app.archived.collect();
            const collection = scenes.app.collection;
            tryCompare(part("collectionName"), "activeFocus", true);
            verify(!part("saveCollection").enabled);
            for (const letter of ["a", "b"])
                keyClick(letter);
            compare(collection.name, "ab");
            scenes.settle();
            mouseClick(part("collectionAccount0"));
            part("collectionAddress").forceActiveFocus(Qt.TabFocusReason);
            keyClick("x");
            keyClick(Qt.Key_Return);
            verify(part("addressRefused").visible);
            keyClick("@");
            keyClick("y");
            keyClick(Qt.Key_Return);
            compare(collection.addresses.count, 1);
            compare(part("collectionAddress").text, "");
            tryVerify(() => collection.countText !== "—");
            keyClick(Qt.Key_Return);
            scenes.settle();
            verify(!collection.isOpen);
            collection.open("usergroup:ab");
            compare(collection.addresses.count, 1);
            verify(collection.isExisting);
            collection.close();
        }
    }
}
