// The archive flow as a user has it before them, and what a run leaves.
import QtQuick
import QtQuick.Window
import QtTest
import Corvane
import "../support"

WindowUnderTest {
    id: root

    TestCase {
        name: "Archive"
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
        function openSheet() {
            mouseClick(part("primaryAction"));
            tryVerify(() => archive.stage === ArchiveScreen.Confirm && !archive.confirmation.isLoading);
            // The sheet stands still, and where it was told to.
            tryVerify(() => part("startArchiveButton").visible);
            waitForRendering(part("startArchiveButton"));
            tryVerify(() => part("candidateList").count === archive.candidates.count);
        }

        function test_FromTheTicksToTheResult() {
            mouseClick(findChild(row("2018 年"), "tickBox"));
            openSheet();
            compare(archive.candidates.count, 11);
            const list = part("candidateList");
            list.forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Down);
            keyClick(Qt.Key_Space);
            compare(part("tickedText").text, "已勾选 10 封，共 11 封");
            keyClick(Qt.Key_Return);
            tryVerify(() => archive.stage === ArchiveScreen.Result);
            compare(archive.outcome.view.title, "归档完成");
            compare(part("tile0").figure, "10");
            tryVerify(() => part("doneButton").activeFocus);
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
            verify(part("primaryAction").activeFocus, "what opened it");
        }
        function test_ARunIsCancelledOnce_AndNotByEscape() {
            openSheet();
            scenes.holdRuns();
            mouseClick(part("startArchiveButton"));
            compare(archive.stage, ArchiveScreen.Running);
            const cancel = part("cancelRunButton");
            tryVerify(() => cancel.visible);
            keyClick(Qt.Key_Return);
            keyClick(Qt.Key_Space);
            keyClick(Qt.Key_Escape);
            compare(archive.stage, ArchiveScreen.Running, "no key that was meant for the sheet before");
            verify(!archive.progress.isCancelling);
            mouseClick(cancel);
            compare(cancel.text, "正在取消…");
            verify(!cancel.enabled);
            scenes.letGo();
            tryVerify(() => archive.stage === ArchiveScreen.Result);
            compare(archive.outcome.view.title, "归档已取消");
        }
        function test_ARunGoesOnBehindTheScreens() {
            openSheet();
            scenes.holdRuns();
            mouseClick(part("startArchiveButton"));
            const background = part("backgroundButton");
            tryVerify(() => background.visible);
            mouseClick(background);
            verify(!archive.isShown);
            tryVerify(() => !background.visible);
            compare(part("primaryAction").text, "查看归档进度");
            verify(!part("updateButton").enabled);
            tree.forceActiveFocus(Qt.TabFocusReason);
            scenes.letGo();
            tryCompare(part("runEnd"), "visible", true);
            verify(!archive.isShown && tree.activeFocus, "nobody's work is covered");
            mouseClick(part("showRunEnd"));
            tryVerify(() => archive.isShown && archive.stage === ArchiveScreen.Result);
            verify(!part("runEnd").visible);
        }
        function test_FailuresAreShownWithTheirReason_AndCanBeTriedAgain() {
            mouseClick(findChild(row("2019 年"), "tickBox"));
            openSheet();
            mouseClick(part("startArchiveButton"));
            tryVerify(() => archive.stage === ArchiveScreen.Result);
            compare(archive.outcome.view.title, "归档完成，46 封失败");
            const retry = part("retryButton");
            tryVerify(() => retry.visible);
            compare(retry.text, "再试失败的 46 封");
            mouseClick(retry);
            tryVerify(() => archive.stage === ArchiveScreen.Confirm && archive.candidates.count === 46);
        }
    }
}
