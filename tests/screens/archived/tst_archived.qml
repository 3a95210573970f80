// The overview of archived mail and the space screen as a user has them before them.
import QtQuick
import QtQuick.Window
import QtTest
import Corvane
import "../support"

WindowUnderTest {
    id: root

    TestCase {
        name: "Archived"
        when: windowShown

        function init() {
            root.begin(true);
            waitForRendering(root.view);
        }
        function cleanup() {
            scenes.settle();
            root.archive.close();
        }
        function part(name: string): Item {
            const found = findChild(root.view, name) ?? findChild(root.overlay, name);
            verify(found, name);
            return found;
        }
        function go(number: int) {
            keyClick(Qt.Key_0 + number, Qt.ControlModifier);
            scenes.settle();
            waitForRendering(root.view);
        }

        function test_NothingIsSaidOfOriginalsBeforeACheck() {
            go(2);
            const screen = scenes.app.archived;
            tryCompare(screen, "state", ArchivedScreen.Listed);
            compare(part("heroFigure").text, "未检查");
            compare(screen.hero.kind, "");
            verify(part("archivedAccounts").count > 0);

            // There is no index that could be asked.
            mouseClick(part("checkButton"));
            scenes.settle();
            tryCompare(screen.check, "isRunning", false);
            compare(part("heroFigure").text, "未检查");
            tryVerify(() => part("heroNote").text.length > 0);
        }
        function test_AnAccountOpensByReturn_AndItsSheetByEscapeCloses() {
            go(2);
            part("archivedAccounts").forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Home);
            keyClick(Qt.Key_Return);
            tryVerify(() => scenes.app.archived.detail.isOpen);
            tryCompare(part("closeDetailButton"), "activeFocus", true);
            verify(!part("guideButton").visible);
            keyClick(Qt.Key_Escape);
            tryVerify(() => !scenes.app.archived.detail.isOpen);
            tryVerify(() => part("archivedAccounts").activeFocus);
        }
        function test_SendersAreTickedBySpace_AndKeptWhileOneIsElsewhere() {
            go(5);
            const screen = scenes.app.space;
            tryCompare(screen, "state", SpaceScreen.Listed);
            const list = part("spaceSenders");
            tryVerify(() => list.count > 0);
            verify(!part("backUpButton").enabled);
            list.forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Home);
            keyClick(Qt.Key_Space);
            compare(screen.chosen.tickedTitle, "已选 1 个发件人");
            keyClick(Qt.Key_A, Qt.ControlModifier);
            compare(screen.chosen.tickState, 1);
            go(1);
            go(5);
            compare(screen.chosen.tickState, 1);
            mouseClick(part("backUpButton"));
            scenes.settle();
            tryCompare(root.archive, "stage", ArchiveScreen.Confirm);
        }
    }
}
