// The picker of the archive's folder as a user has it before them.
import QtQuick
import QtTest
import Corvane
import "../support"

WindowUnderTest {
    id: root

    TestCase {
        id: test
        name: "Folders"
        when: windowShown

        property FolderPicker picker
        property ListView list
        property string base

        function init() {
            root.begin(true);
            base = scenes.makeFolders("Documents/places", 30);
            scenes.makeFolders("Documents/places/f1", 2);
            picker = root.archive.place.folderPicker;
            mouseClick(part("changeLocationButton"));
            tryVerify(() => picker.pathText.length > 0 && !picker.busy);
            list = part("folderList");
            tryVerify(() => list.visible && part("useFolderButton").activeFocus);
            go(base);
        }
        function cleanup() {
            scenes.settle();
            if (list && list.visible)
                mouseClick(part("cancelFolderButton"));
            tryVerify(() => !list || !list.visible);
        }
        // Of the open sheet: the window has several of them, with the same parts.
        function part(name: string): Item {
            const found = findChild(root.overlay, name) ?? findChild(root.view, name);
            verify(found, name);
            return found;
        }
        function settled() {
            scenes.settle();
            tryVerify(() => !picker.busy);
        }
        // By the field, as a user types it.
        function go(path: string) {
            const field = part("folderPath");
            field.forceActiveFocus(Qt.TabFocusReason);
            field.selectAll();
            field.text = path;
            keyClick(Qt.Key_Return);
            settled();
            list.forceActiveFocus(Qt.TabFocusReason);
        }

        function test_KeysWalkTheFolders_AndTheButtonTakesTheRow() {
            compare(picker.pathText, base);
            compare(list.count, 30);
            compare(list.currentIndex, -1);
            keyClick(Qt.Key_Down);
            compare(list.currentIndex, 0);
            keyClick(Qt.Key_End);
            compare(list.currentIndex, 29);
            keyClick(Qt.Key_F);
            keyClick(Qt.Key_1);
            compare(picker.targetText(list.currentIndex), base + "/f1");
            keyClick(Qt.Key_Return);
            settled();
            compare(picker.pathText, base + "/f1");
            compare(list.currentIndex, -1);
            compare(part("folderPath").text, base + "/f1");
            keyClick(Qt.Key_Backspace);
            settled();
            compare(picker.pathText, base);
            keyClick(Qt.Key_Down);
            settled();
            mouseClick(part("useFolderButton"));
            settled();
            tryVerify(() => !list.visible);
            compare(root.archive.place.destination.folder.toString(), "file://" + base + "/f0");
        }
        function test_WithoutARowReturnMakesTheProposedFolder_EscapeTakesNothing() {
            const before = root.archive.place.destination.folder.toString();
            keyClick(Qt.Key_Escape);
            tryVerify(() => !list.visible);
            compare(root.archive.place.destination.folder.toString(), before);

            mouseClick(part("changeLocationButton"));
            settled();
            tryVerify(() => part("useFolderButton").activeFocus);
            go(base);
            tryVerify(() => findChild(root.overlay, "proposedFolder")?.visible ?? false);
            keyClick(Qt.Key_Return);
            settled();
            tryVerify(() => !list.visible);
            compare(root.archive.place.destination.folder.toString(), "file://" + base + "/邮件归档");
        }
        // A full folder is taken by a second, deliberate press only; a name that is being typed holds everything.
        function test_AFullFolderIsWarnedOf_AndAnUnfinishedNameIsNotThrownAway() {
            keyClick(Qt.Key_Down);
            keyClick(Qt.Key_Down);
            settled();
            tryCompare(part("folderWarning"), "visible", true);
            compare(part("useFolderButton").text, "新建并使用");
            mouseClick(part("newFolderButton"));
            const field = part("newFolderName");
            tryVerify(() => field.activeFocus);
            field.text = "abc";
            verify(!part("useFolderButton").enabled);
            keyClick(Qt.Key_Escape);
            tryVerify(() => part("useFolderButton").enabled);
            mouseClick(part("useAnywayButton"));
            settled();
            tryVerify(() => !list.visible);
            compare(root.archive.place.destination.folder.toString(), "file://" + base + "/f1");
        }
        // A field keeps the arrows to itself: what stands beside it needs Tab.
        function test_TabComesToEveryControl() {
            for (const name of ["cancelFolderButton", "useFolderButton", "folderUpButton", "folderPath", "newFolderButton",
                    "folderPlaces", "folderList"]) {
                keyClick(Qt.Key_Tab);
                verify(part(name).activeFocus, name);
            }
        }
        function test_ANewFolderIsMadeAndOpened_EscapeOnlyLeavesItsField() {
            mouseClick(part("newFolderButton"));
            const field = part("newFolderName");
            tryVerify(() => field.activeFocus);
            keyClick(Qt.Key_Escape);
            tryVerify(() => !field.visible);
            verify(list.visible);

            mouseClick(part("newFolderButton"));
            tryVerify(() => field.activeFocus);
            field.text = "f3";
            keyClick(Qt.Key_Return);
            settled();
            verify(part("folderError").visible);
            field.text = "归档";
            keyClick(Qt.Key_Return);
            settled();
            compare(picker.pathText, base + "/归档");
            tryVerify(() => !field.visible && list.activeFocus);
        }
        function test_EveryControlHasAName() {
            const nameless = [];
            const look = item => {
                if (!item.visible)
                    return;
                // Controls, and lists.
                if (item.activeFocusOnTab && item.Accessible.name === "")
                    nameless.push(item);
                for (let i = 0; i < item.children.length; ++i)
                    look(item.children[i]);
            };
            look(root.overlay);
            compare(nameless.length, 0, nameless.join());
        }
    }
}
