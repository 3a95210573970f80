// The home as a user has it before them: keys, pointer, sizes.
import QtQuick
import QtQuick.Window
import QtTest
import Corvane
import "../support"

WindowUnderTest {
    id: root

    TestCase {
        name: "Home"
        when: windowShown

        readonly property HomeScreen home: root.home
        readonly property ArchiveScreen archive: root.archive
        property ListView tree

        function init() {
            root.begin(true);
            tree = part("organizeTree");
            tree.forceActiveFocus(Qt.TabFocusReason);
            tryVerify(() => tree.itemAtIndex(0) !== null);
            waitForRendering(root.view);
        }
        function cleanup() {
            scenes.letGo();
            scenes.settle();
            root.archive.close();
        }
        function part(name: string): Item {
            const found = findChild(root.view, name) ?? findChild(root.overlay, name);
            verify(found, name);
            return found;
        }
        function row(title: string): Item {
            return tree.itemAtIndex(scenes.treeRow(title));
        }
        // A part that has just appeared moves until its layout was made.
        function clickWhereItStays(name: string) {
            const item = part(name);
            let before = Qt.point(-1, -1);
            tryVerify(() => {
                const now = item.mapToItem(null, 0, 0);
                const stays = item.visible && item.width > 0 && now.x === before.x && now.y === before.y;
                before = now;
                return stays;
            });
            mouseClick(item);
        }
        // The keyboard is at a part that shows it, within the screen of that name.
        function verifyKeyboardIn(page: string) {
            tryVerify(() => {
                const at = root.Window.activeFocusItem;
                if (!at || !at.visible || !at.activeFocusOnTab)
                    return false;
                let around = at;
                while (around && around.objectName !== page)
                    around = around.parent;
                return around !== null;
            }, 5000, page + " has the keyboard, not " + root.Window.activeFocusItem);
        }

        function test_SpaceTicks_AndArrowsOpenAndClose() {
            keyClick(Qt.Key_Home);
            keyClick(Qt.Key_Down);
            keyClick(Qt.Key_Space);
            compare(row("2018 年").tick, OrganizeTreeModel.Ticked);
            compare(row("zhiyuan.lin@hengtai.example").tick, OrganizeTreeModel.Mixed);
            verify(home.selection.line.startsWith("已选 11 封"));

            keyClick(Qt.Key_Right);
            verify(row("2018 年").expanded);
            keyClick(Qt.Key_Right);
            compare(home.tree.selection.currentRow, 2);
            keyClick(Qt.Key_Space);
            compare(row("2018 年").tick, OrganizeTreeModel.Mixed);
            keyClick(Qt.Key_Left);
            compare(home.tree.selection.currentRow, 1);
            keyClick(Qt.Key_Left);
            verify(!row("2018 年").expanded);
            keyClick(Qt.Key_Left);
            compare(home.tree.selection.currentRow, 0);

            keyClick(Qt.Key_A, Qt.ControlModifier);
            compare(home.tree.tickState, OrganizeTreeModel.Ticked);
        }
        function test_AClickOnTheBoxTicks_OnTheRowSelects() {
            const year = row("2019 年");
            mouseClick(year, 200, year.height / 2);
            compare(year.tick, OrganizeTreeModel.Unticked);
            verify(year.selected);
            mouseClick(findChild(year, "tickBox"));
            compare(year.tick, OrganizeTreeModel.Ticked);
            mouseClick(findChild(year, "arrow"));
            verify(row("2019 年").expanded);
        }
        function test_AColumnNarrowsTheTree_AndEscapeGivesAllBack() {
            const all = tree.count;
            mouseClick(part("yearColumn2021"));
            compare(home.figures.scopeYear, 2021);
            compare(tree.count, 8);
            keyClick(Qt.Key_Escape);
            compare(home.figures.scopeYear, 0);
            compare(tree.count, all);
            mouseClick(part("yearColumn2021"));
            mouseClick(part("yearColumn2021"));
            compare(tree.count, all);
        }
        function test_WhatHasTroubleIsSeenInTheMailList() {
            tryVerify(() => part("proofLine").visible);
            verify(!part("showTroubled").visible);
            clickWhereItStays("startProof");
            scenes.settle();
            clickWhereItStays("showTroubled");
            verify(scenes.app.mails.filters.onlyTroubled);
            tryVerify(() => part("mailListPage").visible);
        }
        function test_InASmallWindowTheChartIsABar_AndTheRemarkStays() {
            const remark = part("locationRemark");
            verify(part("yearChart").visible && part("accountList").visible);
            root.width = 1000;
            root.height = 560;
            root.view.Window.window.width = 1000;
            root.view.Window.window.height = 560;
            tryVerify(() => part("yearShare").visible && !part("yearChart").visible);
            verify(!part("accountList").visible);
            verify(remark.visible && remark.text.startsWith("这是本机文件夹"));
            root.view.Window.window.width = 1240;
            root.view.Window.window.height = 840;
        }
        function test_WithoutAPlaceTheBarAsksForOne() {
            root.begin(false);
            verify(!part("primaryAction").visible);
            verify(part("chooseLocationButton").visible);
            compare(part("locationName").text, "先选择归档位置");
        }
        function test_KeyOfAScreen_TakesTheKeyboardThere_data() {
            return ["organizeTree", "yearChart", "updateButton", "place-home"].map(name => ({ tag: name }));
        }
        function test_KeyOfAScreen_TakesTheKeyboardThere(data) {
            part(data.tag).forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_4, Qt.ControlModifier);
            verifyKeyboardIn("mailListPage");
            keyClick(Qt.Key_F, Qt.ControlModifier);
            keyClick(Qt.Key_1, Qt.ControlModifier);
            verifyKeyboardIn("homePage");
            if (data.tag !== "place-home")
                compare(root.Window.activeFocusItem, part(data.tag), "where it was");
            keyClick(Qt.Key_Tab);
            verify(root.Window.activeFocusItem.visible);
        }
        function test_PartThatGoesAway_LeavesTheKeyboardInItsScreen() {
            part("accountList").forceActiveFocus(Qt.TabFocusReason);
            root.width = 1000; // no room for the accounts
            tryVerify(() => !part("accountList").visible);
            verifyKeyboardIn("homePage");
        }
    }
}
