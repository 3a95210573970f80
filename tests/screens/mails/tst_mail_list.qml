// The mail list as a user has it before them: keys, pointer, filters, what the detail shows.
import QtQuick
import QtQuick.Window
import QtTest
import Corvane

Item {
    id: root
    width: 1024
    height: 840

    MailListPage {
        id: page
        width: root.width
        height: root.height
        app: scenes.app
    }

    TestCase {
        id: test
        name: "MailList"
        when: windowShown

        readonly property MailListScreen screen: page.screen
        readonly property ListSelection selection: screen.selection
        readonly property int total: 200
        property MessageView view

        function initTestCase() {
            view = findChild(page, "messageView");
        }
        function init() {
            page.width = root.width;
            screen.filters.clear();
            publish("");
            view.forceActiveFocus(Qt.TabFocusReason);
            selection.select(0);
        }
        function publish(subject: string) {
            wait(0);
            tryVerify(() => scenes.isIdle());
            scenes.publish(total, subject);
            tryVerify(() => scenes.isIdle());
            compare(view.count, total);
        }
        function clickRow(row: int, modifiers: int) {
            mouseClick(view, 100, view.itemAtIndex(row).y - view.contentY + 30, Qt.LeftButton, modifiers);
        }
        function subjectAt(y: real): string {
            return view.itemAt(10, view.contentY + y).subject;
        }

        function test_KeysMoveTheRow_AndShiftSelectsFromTheAnchor() {
            keyClick(Qt.Key_Down);
            keyClick(Qt.Key_Down);
            compare(selection.currentRow, 2);
            keyClick(Qt.Key_Down, Qt.ShiftModifier);
            keyClick(Qt.Key_Down, Qt.ShiftModifier);
            compare(selection.count, 3);
            keyClick(Qt.Key_Up, Qt.ShiftModifier);
            compare(selection.count, 2);
            compare(findChild(page, "listSummary").text, "已选 2 封 · 2 MB，共 200 封 · 200 MB");
            keyClick(Qt.Key_Up, Qt.ControlModifier);
            keyClick(Qt.Key_Up, Qt.ControlModifier);
            compare(selection.currentRow, 1);
            keyClick(Qt.Key_Space, Qt.ControlModifier);
            compare(selection.count, 3);
            keyClick(Qt.Key_A, Qt.ControlModifier);
            compare(selection.count, total);
            keyClick(Qt.Key_End);
            compare(selection.count, 1);
            compare(selection.currentRow, total - 1);
            verify(view.itemAtIndex(total - 1).y + Theme.rowFull <= view.contentY + view.height);
            keyClick(Qt.Key_PageUp);
            verify(selection.currentRow < total - 5);
            keyClick(Qt.Key_Home);
            compare(view.contentY, view.originY);
        }

        function test_PointerSelectsLikeKeys_AndDetailFollows() {
            clickRow(1, Qt.NoModifier);
            compare(findChild(page, "detailSubject").text, "邮件 1");
            compare(findChild(page, "detailPreview").text, "正文 1");
            clickRow(4, Qt.ShiftModifier);
            compare(selection.count, 4);
            clickRow(2, Qt.ControlModifier);
            compare(selection.count, 3);
            compare(findChild(page, "detailSubject").text, "邮件 2");
            verify(!view.itemAtIndex(2).selected);
            verify(view.itemAtIndex(3).selected);
        }

        function test_TheMenuIsForAllThatIsSelected_AndRowsWaitWhileItIsOpen() {
            clickRow(1, Qt.NoModifier);
            clickRow(3, Qt.ShiftModifier);
            mouseClick(view, 100, view.itemAtIndex(2).y - view.contentY + 30, Qt.RightButton);
            tryVerify(() => findChild(page, "messageMenu")?.opened ?? false);
            const menu = findChild(page, "messageMenu");
            compare(selection.count, 3);
            screen.filters.minimumAttachments = 1;
            wait(0);
            tryVerify(() => screen.filters.chips.length === 1);
            compare(view.count, total);
            menu.close();
            tryCompare(view, "count", total / 4);
        }

        function test_RowsAboveGo_AndThePlaceStays() {
            view.contentY = view.originY + 50 * Theme.rowFull + 31;
            clickRow(52, Qt.NoModifier);
            const before = [subjectAt(0), subjectAt(400)];
            screen.filters.years.toggle(1); // without the five of 2022
            tryCompare(view, "count", total - 5);
            compare([subjectAt(0), subjectAt(400)], before);
            compare((view.contentY - view.originY) % Theme.rowFull, 31);
            compare(selection.currentRow, 47);
            screen.filters.years.clear();
            tryCompare(view, "count", total);
            compare([subjectAt(0), subjectAt(400)], before);
        }

        function test_AnotherOrderShowsItsBeginning() {
            keyClick(Qt.Key_End);
            mouseClick(findChild(page, "sortDirection"));
            tryCompare(selection, "currentRow", 0);
            compare(findChild(page, "detailSubject").text, "邮件 " + (total - 1));
            compare(view.contentY, view.originY);
            mouseClick(findChild(page, "sortDirection"));
            tryVerify(() => findChild(page, "detailSubject").text === "邮件 0");
        }
        function test_FiltersOfThePaneBecomeChips_AndAChipTakesItsFilterAway() {
            mouseClick(findChild(page, "yearFilter0"));
            tryCompare(view, "count", 5);
            verify(!findChild(page, "filterButton").visible);
            page.width = 808;
            verify(!findChild(page, "filterPane").visible);
            verify(findChild(page, "filterButton").visible);
            compare(findChild(page, "filterChip0").text, "2022 年");
            verify(findChild(page, "messageDetail").width >= 400);
            findChild(page, "filterChip0").forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Return);
            tryCompare(view, "count", total);
            verify(findChild(page, "filterButton").activeFocus);
            mouseClick(findChild(page, "filterButton"));
            tryVerify(() => findChild(page, "filterPopup").opened);
            compare(page.Window.activeFocusItem.objectName, "troubledFilter");
            keyClick(Qt.Key_Escape);
            tryVerify(() => !findChild(page, "filterPopup").visible);
            verify(findChild(page, "filterButton").activeFocus);
        }

        function test_SearchNarrowsWhileTyping_AndDownGoesToTheList() {
            const search = findChild(page, "mailSearch");
            search.forceActiveFocus(Qt.TabFocusReason);
            for (const key of ["1", "9", "9"])
                keyClick(key);
            tryCompare(view, "count", 1);
            compare(findChild(page, "detailSubject").text, "邮件 199");
            keyClick(Qt.Key_Down);
            verify(view.activeFocus);
            compare(search.text, "199");
            search.forceActiveFocus(Qt.TabFocusReason);
            keyClick("x");
            tryCompare(findChild(page, "noMatch"), "visible", true);
            verify(findChild(page, "messageDetail").visible);
            mouseClick(findChild(findChild(page, "noMatch"), "emptyStateButton"));
            tryCompare(search, "text", "");
            tryCompare(view, "count", total);
        }

        function test_AButtonThatComesBackLeavesTheKeyboardInTheSearch() {
            const search = findChild(page, "mailSearch");
            findChild(page, "archiveButton").forceActiveFocus(Qt.TabFocusReason);
            search.forceActiveFocus(Qt.TabFocusReason);
            keyClick("q");
            keyClick("j");
            tryVerify(() => view.count === 0);
            verify(search.activeFocus);
            keyClick(Qt.Key_Escape);
            tryVerify(() => view.count === total);
            verify(search.activeFocus);
        }

        function test_EscapeClearsTheSearch() {
            const search = findChild(page, "mailSearch");
            search.forceActiveFocus(Qt.TabFocusReason);
            keyClick("7");
            tryVerify(() => view.count < total);
            keyClick(Qt.Key_Escape);
            compare(screen.filters.query, "");
            tryCompare(view, "count", total);
            keyClick(Qt.Key_Escape);
            verify(view.activeFocus);
        }

        function everyText(item, visit) {
            if (item.textFormat !== undefined)
                visit(item);
            for (let i = 0; i < item.children.length; ++i)
                everyText(item.children[i], visit);
        }

        function test_MarkupIsShownAsItStands() {
            const subject = "<img src='file:///x'><b>粗</b> &lt; <a href='x'>y</a>";
            publish(subject);
            compare(findChild(page, "detailSubject").text, subject);
            compare(view.itemAtIndex(0).subject, subject);
            everyText(page, label => compare(label.textFormat, Text.PlainText, label.text));
        }

        function test_GiantSubjectsTakeTwoLines() {
            publish("長".repeat(100000));
            const label = findChild(page, "detailSubject");
            verify(label.truncated);
            compare(label.lineCount, 2);
            verify(view.itemAtIndex(0).subject.length < 400);
        }

        function test_EachRowIsSpokenWithItsState() {
            compare(view.itemAtIndex(3).spokenName.split("，").length, 5);
            verify(view.itemAtIndex(3).spokenName.startsWith("邮件 3，周明哲，2022-"));
            verify(view.itemAtIndex(3).spokenName.endsWith("，1 MB，未归档"));
        }

        function test_WithoutMailThePageSaysWhy() {
            scenes.fail();
            const state = findChild(page, "mailListState");
            tryCompare(state, "title", "没有读到邮件");
            verify(state.line.length > 0);
            verify(!findChild(page, "messageDetail").visible);
            const button = findChild(state, "emptyStateButton");
            verify(button.enabled);
            mouseClick(button);
            compare(state.title, "正在扫描 Mail…");
            verify(!button.enabled);
        }

        function test_TheSplitterIsRemembered() {
            page.width = 1100;
            const splitter = findChild(page, "listSplitter");
            const list = findChild(page, "mailListPane");
            mouseDrag(splitter, 0, 300, 20, 0);
            verify(list.width > 380);
            compare(splitter.x, list.x + list.width);
            mouseDoubleClickSequence(splitter, 0, 300);
            compare(list.width, 371);
        }
    }
}
