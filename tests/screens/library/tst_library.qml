// The library as a user has it before them: keys, pointer, search, years, removal.
import QtQuick
import QtTest
import Corvane
import "../support"

WindowUnderTest {
    id: root

    readonly property LibraryScreen screen: scenes.app.library
    readonly property ListSelection selection: screen.selection
    property LibraryView rows

    TestCase {
        id: test
        name: "Library"
        when: windowShown

        function initTestCase() {
            root.beginWith(() => scenes.beginLibrary());
            keyClick(Qt.Key_3, Qt.ControlModifier);
            settle();
            root.rows = part("libraryView");
            tryVerify(() => root.rows.count > 300);
        }
        function init() {
            root.screen.filters.clear();
            settle();
            root.rows.forceActiveFocus(Qt.TabFocusReason);
            root.selection.select(0);
            settle();
        }
        function cleanup() {
            root.screen.removal.close();
        }
        function settle() {
            wait(0);
            tryVerify(() => scenes.isIdle());
            wait(0);
        }
        function part(name: string): Item {
            return findChild(root.view, name) ?? findChild(root.overlay, name);
        }
        function press(name: string) {
            tryVerify(() => part(name) && part(name).visible);
            mouseClick(part(name));
            settle();
        }
        function query(text: string) {
            keyClick(Qt.Key_F, Qt.ControlModifier);
            verify(part("librarySearch").activeFocus);
            part("librarySearch").text = text;
            tryVerify(() => !root.screen.search.busy);
            settle();
        }

        function test_KeysOpenThreadsAndTakeRanges() {
            const all = root.rows.count;
            keyClick(Qt.Key_Right);
            compare(root.rows.count, all + 4);
            keyClick(Qt.Key_Right);
            compare(root.selection.currentRow, 1);
            keyClick(Qt.Key_Down, Qt.ShiftModifier);
            keyClick(Qt.Key_Down, Qt.ShiftModifier);
            compare(root.selection.count, 3);
            keyClick(Qt.Key_Left);
            keyClick(Qt.Key_Left);
            compare(root.rows.count, all);
            keyClick(Qt.Key_A, Qt.ControlModifier);
            compare(part("librarySummary").text.split(" · ")[0], "已选 " + (all + 4) + " 封");
            keyClick(Qt.Key_End);
            compare(root.selection.currentRow, all - 1);
            keyClick(Qt.Key_PageUp);
            verify(root.selection.currentRow < all - 5);
            keyClick(Qt.Key_Home);
            compare(root.rows.contentY, root.rows.originY);
        }

        function test_TheSearchMarksScrollsAndGivesAllBack() {
            const all = root.rows.count;
            query("材料样板");
            verify(root.rows.count < all);
            verify(root.rows.itemAtIndex(0).titlePieces.some(piece => piece.marked));
            keyClick(Qt.Key_Down);
            verify(root.rows.activeFocus);
            query("qxzq");
            tryVerify(() => part("libraryNoMatch").visible);
            keyClick(Qt.Key_Escape);
            settle();
            tryCompare(root.rows, "count", all);
        }

        function test_YearsNarrowByClickDragAndKeys() {
            const all = root.rows.count;
            const strip = part("yearStrip");
            const to = part("stripYear2013");
            press("stripYear2012");
            verify(root.rows.count < all && root.rows.count > 20);
            compare(part("yearChip").text, "2012 年");
            press("stripYear2012");
            compare(root.rows.count, all);
            mouseDrag(part("stripYear2012"), 5, 30, to.width, 0);
            settle();
            compare(part("yearChip").text, "2012–2013 年");
            strip.forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Home);
            keyClick(Qt.Key_Right, Qt.ShiftModifier);
            keyClick(Qt.Key_Return);
            settle();
            compare(part("yearChip").text, "2009–2010 年");
            keyClick(Qt.Key_Escape);
            settle();
            compare(root.rows.count, all);
        }

        function test_WhatIsBroughtBackFromACloudCanStayThere() {
            scenes.evict("b1");
            query("生日快乐");
            keyClick(Qt.Key_Down);
            tryCompare(root.screen.mail, "fileState", ArchivedFile.InCloud);
            keyClick(Qt.Key_Return);
            tryVerify(() => part("retrievalBanner").visible);
            verify(!part("openArchived").enabled);
            keyClick(Qt.Key_1, Qt.ControlModifier);
            keyClick(Qt.Key_3, Qt.ControlModifier);
            verify(part("retrievalBanner").visible);
            mouseClick(part("cancelRetrieval"));
            tryVerify(() => !part("retrievalBanner").visible);
            verify(part("openArchived").enabled);
            compare(root.screen.mail.fileState, ArchivedFile.InCloud);
            compare(part("librarySearch").text, "生日快乐");
        }

        function test_RemovingAsksTwiceAndReturnNeverRemoves() {
            const all = root.rows.count;
            root.selection.select(5);
            keyClick(Qt.Key_Delete);
            tryVerify(() => part("removalCancel")?.activeFocus === true);
            const accept = part("removalAccept");
            verify(!accept.enabled);
            keyClick(Qt.Key_Return);
            settle();
            compare(root.rows.count, all);
            tryVerify(() => root.rows.activeFocus);
            keyClick(Qt.Key_Delete);
            tryVerify(() => part("removalCancel")?.activeFocus === true);
            mouseClick(part("onlyCopyTick"));
            tryVerify(() => accept.enabled);
            mouseClick(accept);
            tryCompare(root.rows, "count", all - 1);
            settle();
            compare(root.selection.currentRow, 5);
            tryVerify(() => root.rows.activeFocus);
        }
    }
}
