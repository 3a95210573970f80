// The home and the archive flow as a user has them before them: keys, pointer, sizes, and what a run leaves.
import QtQuick
import QtQuick.Templates as T
import QtQuick.Window
import QtTest
import Corvane

Item {
    id: root
    width: 1240
    height: 840

    readonly property Item overlay: T.Overlay.overlay

    Loader {
        id: holder
        anchors.fill: parent
        active: false
        focus: true
        sourceComponent: ContentView {
            app: scenes.app
            focus: true
        }
    }

    TestCase {
        id: test
        name: "Home"
        when: windowShown

        property HomeScreen home
        property ArchiveScreen archive
        property ListView tree

        function begin(withDestination: bool) {
            holder.active = false;
            root.width = 1240;
            root.height = 840;
            scenes.begin(withDestination);
            holder.active = true;
            home = scenes.app.home;
            archive = scenes.app.archive;
            tree = findChild(holder.item, "organizeTree");
            verify(tree);
            tree.forceActiveFocus(Qt.TabFocusReason);
            tryVerify(() => tree.itemAtIndex(0) !== null);
            waitForRendering(holder.item);
        }
        function init() {
            begin(true);
        }
        function cleanup() {
            scenes.letGo();
            scenes.settle();
            archive.close();
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
        function part(name: string): Item {
            const found = findChild(holder.item, name);
            verify(found, name);
            return found;
        }
        // Of an open sheet, whose items stand in the overlay.
        function inSheet(name: string): Item {
            const found = findChild(root.overlay, name);
            verify(found, name);
            return found;
        }
        function row(title: string): Item {
            return tree.itemAtIndex(scenes.treeRow(title));
        }
        function openSheet() {
            mouseClick(part("primaryAction"));
            tryVerify(() => archive.stage === ArchiveScreen.Confirm && !archive.isLoading);
            // The sheet stands still, and where it was told to.
            tryVerify(() => inSheet("startArchiveButton").visible);
            waitForRendering(inSheet("startArchiveButton"));
            tryVerify(() => inSheet("candidateList").count === archive.candidates.count);
        }

        function test_SpaceTicks_AndArrowsOpenAndClose() {
            keyClick(Qt.Key_Home);
            keyClick(Qt.Key_Down);
            keyClick(Qt.Key_Space);
            compare(row("2018 年").tick, OrganizeTreeModel.Ticked);
            compare(row("zhiyuan.lin@hengtai.example").tick, OrganizeTreeModel.Mixed);
            verify(home.selectionLine.startsWith("已选 11 封"));

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
            compare(home.scopeYear, 2021);
            compare(tree.count, 8);
            keyClick(Qt.Key_Escape);
            compare(home.scopeYear, 0);
            compare(tree.count, all);
            mouseClick(part("yearColumn2021"));
            mouseClick(part("yearColumn2021"));
            compare(tree.count, all);
        }
        function test_InASmallWindowTheChartIsABar_AndTheRemarkStays() {
            const remark = part("locationRemark");
            verify(part("yearChart").visible && part("accountList").visible);
            root.width = 1000;
            root.height = 560;
            holder.item.Window.window.width = 1000;
            holder.item.Window.window.height = 560;
            tryVerify(() => part("yearShare").visible && !part("yearChart").visible);
            verify(!part("accountList").visible);
            verify(remark.visible && remark.text.startsWith("这是本机文件夹"));
            holder.item.Window.window.width = 1240;
            holder.item.Window.window.height = 840;
        }
        function test_WithoutAPlaceTheBarAsksForOne() {
            begin(false);
            verify(!part("primaryAction").visible);
            verify(part("chooseLocationButton").visible);
            compare(part("locationName").text, "先选择归档位置");
        }
        function test_FromTheTicksToTheResult() {
            mouseClick(findChild(row("2018 年"), "tickBox"));
            openSheet();
            compare(archive.candidates.count, 11);
            const list = inSheet("candidateList");
            list.forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Down);
            keyClick(Qt.Key_Space);
            compare(inSheet("tickedText").text, "已勾选 10 封，共 11 封");
            keyClick(Qt.Key_Return);
            tryVerify(() => archive.stage === ArchiveScreen.Result);
            compare(archive.result.title, "归档完成");
            compare(inSheet("tile0").figure, "10");
            tryVerify(() => inSheet("doneButton").activeFocus);
            keyClick(Qt.Key_Return);
            compare(archive.stage, ArchiveScreen.Closed);
            tryVerify(() => row("2018 年").count === "1");
        }
        function test_EscapeClosesTheConfirmation_AndGivesTheKeyboardBack() {
            openSheet();
            keyClick(Qt.Key_Escape);
            tryVerify(() => archive.stage === ArchiveScreen.Closed);
            tryVerify(() => findChild(root.overlay, "startArchiveButton") === null);
            compare(archive.candidates.count, 0);
            verify(tree.activeFocus);
        }
        function test_ALostPlaceIsSaidInTheSheet_AndNothingCanStart() {
            openSheet();
            scenes.losePlace();
            const start = inSheet("startArchiveButton");
            compare(start.text, "位置不可用");
            verify(!start.enabled);
            compare(inSheet("remarkBanner").headline, "归档位置当前不可用");
        }
        function test_APlaceLostDuringTheRunBringsTheConfirmationBack() {
            openSheet();
            scenes.holdRuns();
            mouseClick(inSheet("startArchiveButton"));
            scenes.replacePlace();
            scenes.letGo();
            tryVerify(() => archive.stage === ArchiveScreen.Confirm);
            tryVerify(() => inSheet("remarkBanner").headline === "归档没有完成");
            tryCompare(inSheet("startArchiveButton"), "text", "位置不可用");
            compare(archive.candidates.tickState, 1);
        }
        function test_ARunIsCancelledOnce_AndNotByEscape() {
            openSheet();
            scenes.holdRuns();
            mouseClick(inSheet("startArchiveButton"));
            compare(archive.stage, ArchiveScreen.Running);
            const cancel = inSheet("cancelRunButton");
            tryVerify(() => cancel.visible && cancel.activeFocus);
            keyClick(Qt.Key_Escape);
            compare(archive.stage, ArchiveScreen.Running);
            mouseClick(cancel);
            compare(cancel.text, "正在取消…");
            verify(!cancel.enabled);
            scenes.letGo();
            tryVerify(() => archive.stage === ArchiveScreen.Result);
            compare(archive.result.title, "归档已取消");
        }
        function test_ARunGoesOnBehindTheScreens() {
            openSheet();
            scenes.holdRuns();
            mouseClick(inSheet("startArchiveButton"));
            const background = inSheet("backgroundButton");
            tryVerify(() => background.visible);
            mouseClick(background);
            verify(!archive.isShown);
            tryVerify(() => !background.visible);
            compare(part("primaryAction").text, "查看归档进度");
            verify(!part("updateButton").enabled);
            mouseClick(part("primaryAction"));
            verify(archive.isShown);
        }
        function test_FailuresAreShownWithTheirReason_AndCanBeTriedAgain() {
            mouseClick(findChild(row("2019 年"), "tickBox"));
            openSheet();
            mouseClick(inSheet("startArchiveButton"));
            tryVerify(() => archive.stage === ArchiveScreen.Result);
            compare(archive.result.title, "归档完成，46 封失败");
            const retry = inSheet("retryButton");
            tryVerify(() => retry.visible);
            compare(retry.text, "再试失败的 46 封");
            mouseClick(retry);
            tryVerify(() => archive.stage === ArchiveScreen.Confirm && archive.candidates.count === 46);
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
