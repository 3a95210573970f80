// What is shown is what was said, in both modes.
import QtQuick
import QtTest
import Corvane

Item {
    id: page
    width: 1240
    height: 840

    AppText { id: text; width: 200; text: "<b>粗</b><img src='file:///etc/passwd'>"; wrapMode: Text.Wrap }
    AppText { id: elided; y: 100; width: 60; text: "一个放不下的很长的主题" }
    Item { id: outer; Item { id: inner } }
    ListRow { id: row; y: 300; width: 300 }

    TestCase {
        name: "Looks"
        when: windowShown

        function test_OnlyElidedTextExplainsItself() {
            verify(!elided.explained);
            mouseMove(elided, 20, 10);
            tryVerify(() => elided.explained);
            mouseMove(text, 20, 10);
            tryVerify(() => !elided.explained);
            verify(!text.explained);
        }

        function test_AnOuterExplanationComesBack_data() {
            return [{ tag: "outer first", order: [outer, inner] }, { tag: "inner first", order: [inner, outer] }];
        }
        function test_AnOuterExplanationComesBack(data) {
            for (const item of data.order)
                ToolTips.explain(item, item === inner ? "内" : "外");
            compare(ToolTips.tip.text, "内");
            ToolTips.end(inner);
            compare(ToolTips.holder, outer);
            compare(ToolTips.tip.text, "外");
            ToolTips.end(outer);
            compare(ToolTips.holder, null);
        }
        function test_RowColoursFollowSelectionAndFocus_data() {
            return [{ selected: false, focused: true, color: Theme.surface },
                { selected: true, focused: true, color: Theme.selection },
                { selected: true, focused: false, color: Theme.selectionInactive }];
        }
        function test_RowColoursFollowSelectionAndFocus(data) {
            row.selected = data.selected;
            row.listFocused = data.focused;
            verify(Qt.colorEqual(row.children[0].color, data.color));
        }
    }
}
