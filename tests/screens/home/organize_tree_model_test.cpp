#include "screens/home/tree/organize_tree_model.h"

#include <optional>

#include <QAbstractItemModelTester>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include "model/model_test.h"
#include "support/sample_messages.h"

namespace corvane::testing {
namespace {

using Level = OrganizeTreeModel::Level;
using Role = OrganizeTreeModel::Role;

class OrganizeTree : public ::testing::Test {
  protected:
    OrganizeTree() { provideEventLoop(); }

    void show(const std::vector<MessageSketch>& sketches) {
        auto messages = std::make_shared<const MessageList>(sampleMessages(home_, sketches));
        auto local = std::make_shared<SharedTextSet>();
        for (const auto& message : *messages) local->insert(message.id);
        const auto years = std::make_shared<const YearByID>(computeMessageYears(*messages));
        const auto none = std::make_shared<const SharedTextSet>();
        tree_.setOverview(computeOrganizeYearSections({messages, local, none, years, std::nullopt, {}}));
    }

    [[nodiscard]] QVariant at(int row, int role) const { return tree_.data(tree_.index(row), role); }

    // "A", "2019", "甲" with a mark for the tick.
    [[nodiscard]] QStringList shown() const {
        const QString marks = QStringLiteral(" x-");
        QStringList rows;
        for (int row = 0; row < tree_.rowCount(); ++row) {
            rows << (QString(marks.at(at(row, Role::TickRole).toInt())) + at(row, Role::TitleRole).toString())
                        .trimmed();
        }
        return rows;
    }

    void open(const char* title) { tree_.setExpanded(rowOf(title), true); }

    [[nodiscard]] int rowOf(const char* title) const {
        for (int row = 0; row < tree_.rowCount(); ++row) {
            if (at(row, Role::TitleRole).toString() == QString::fromUtf8(title)) return row;
        }
        return -1;
    }

    TemporaryHome home_;
    OrganizeTreeModel tree_;
    QAbstractItemModelTester tester_{&tree_, QAbstractItemModelTester::FailureReportingMode::Fatal};
    QSignalSpy resets_{&tree_, &QAbstractItemModel::modelReset};
};

const std::vector<MessageSketch> sample = {{"a", 2019, "imap://A", "甲", 4000},
                                           {"b", 2019, "imap://A", "乙"},
                                           {"c", 2020, "imap://A", "甲", 2000},
                                           {"d", 2019, "imap://B", "丙"}};

QStringList rows(std::initializer_list<const char*> titles) {
    QStringList list;
    for (const char* title : titles) list << QString::fromUtf8(title);
    return list;
}

TEST_F(OrganizeTree, AccountsAreOpenAndYearsClosed) {
    show(sample);
    EXPECT_EQ(shown(), rows({"imap://A", "2019 年", "2020 年", "imap://B", "2019 年"}));
    open("2019 年");
    EXPECT_EQ(shown(), rows({"imap://A", "2019 年", "乙", "甲", "2020 年", "imap://B", "2019 年"}));
    EXPECT_DOUBLE_EQ(at(1, Role::ShareRole).toDouble(), 1) << "the largest year is the measure";
    tree_.setExpanded(0, false);
    EXPECT_EQ(shown(), rows({"imap://A", "imap://B", "2019 年"}));
    tree_.setExpanded(0, true);
    EXPECT_EQ(tree_.rowCount(), 7) << "what was open stays open";
    EXPECT_EQ(resets_.size(), 0);
}

TEST_F(OrganizeTree, AFolderOfATickedYearLeavesTheYearMixed) {
    show(sample);
    open("2019 年");
    tree_.toggleTick(rowOf("2019 年"));
    EXPECT_EQ(shown().mid(0, 5), rows({"-imap://A", "x2019 年", "x乙", "x甲", "2020 年"}));
    tree_.toggleTick(rowOf("甲"));
    EXPECT_EQ(shown().mid(0, 5), rows({"-imap://A", "-2019 年", "x乙", "甲", "2020 年"}));
    EXPECT_EQ(tree_.tickState(), OrganizeTreeModel::Mixed);
    tree_.toggleTick(0);
    EXPECT_EQ(shown().mid(0, 5), rows({"ximap://A", "x2019 年", "x乙", "x甲", "x2020 年"}));
    tree_.toggleAllTicks();
    EXPECT_EQ(tree_.tickState(), OrganizeTreeModel::Ticked);
    tree_.toggleAllTicks();
    EXPECT_TRUE(tree_.ticks().isEmpty());
}

TEST_F(OrganizeTree, NewFiguresMoveNoRowThatStays) {
    show(sample);
    open("2019 年");
    const QPersistentModelIndex kept = tree_.index(rowOf("2020 年"));
    tree_.toggleTick(rowOf("甲"));
    QSignalSpy removed(&tree_, &QAbstractItemModel::rowsRemoved);
    QSignalSpy inserted(&tree_, &QAbstractItemModel::rowsInserted);

    show({{"b", 2019, "imap://A", "乙"},
          {"c", 2020, "imap://A", "甲", 2000},
          {"e", 2018, "imap://A", "甲"},
          {"d", 2019, "imap://B", "丙"}});
    EXPECT_EQ(shown(), rows({"imap://A", "2018 年", "2019 年", "乙", "2020 年", "imap://B", "2019 年"}));
    EXPECT_EQ(removed.size(), 1) << "the folder";
    EXPECT_EQ(inserted.size(), 1) << "the year before it";
    EXPECT_TRUE(kept.isValid());
    EXPECT_EQ(kept.row(), 4);
    EXPECT_TRUE(tree_.ticks().isEmpty()) << "the ticked messages have gone";
    EXPECT_EQ(resets_.size(), 0);
}

TEST_F(OrganizeTree, AccountsThatChangeTheirOrderMoveAndNothingElse) {
    show({{"a", 2019, "imap://A", "甲", 4000}, {"b", 2019, "imap://B"}, {"c", 2019, "imap://C"}});
    const QPersistentModelIndex kept = tree_.index(rowOf("imap://C"));
    show({{"a", 2019, "imap://A", "甲", 400},
          {"b", 2019, "imap://B", "甲", 900},
          {"c", 2019, "imap://C", "甲", 800}});
    EXPECT_EQ(shown(), rows({"imap://B", "2019 年", "imap://C", "2019 年", "imap://A", "2019 年"}));
    EXPECT_TRUE(kept.isValid());
    EXPECT_EQ(resets_.size(), 0);
}

TEST_F(OrganizeTree, StatisticsShowYearsThatCannotBeOpened) {
    tree_.setOverview(organizeOverviewOfStatistics(
        {{"imap://A", "a@x", {{2021, 3, 3, 3, 300, 100}, {2019, 2, 2, 2, 200, 100}}, 5, 500}}));
    EXPECT_EQ(shown(), rows({"a@x", "2019 年", "2021 年"}));
    EXPECT_FALSE(at(1, Role::ExpandableRole).toBool());
    tree_.toggleTick(1);
    EXPECT_EQ(at(1, Role::TickRole).toInt(), OrganizeTreeModel::Ticked);
}

TEST_F(OrganizeTree, SelectedRowsAreTickedTogetherAndFollowTheirRows) {
    show(sample);
    open("2019 年");
    ListSelection& selection = *tree_.selection();
    selection.select(rowOf("甲"));
    selection.extendTo(rowOf("乙"));
    tree_.toggleTicks(rowOf("乙"));
    EXPECT_EQ(at(rowOf("2019 年"), Role::TickRole).toInt(), OrganizeTreeModel::Ticked);
    EXPECT_EQ(at(rowOf("2020 年"), Role::TickRole).toInt(), OrganizeTreeModel::Unticked);
    const QStringList lines = tree_.selectedLines().split(u'\n');
    ASSERT_EQ(lines.size(), 2);
    for (const QString& line : lines) EXPECT_EQ(line.count(QStringLiteral(" · ")), 4) << line.toStdString();

    tree_.setExpanded(rowOf("2019 年"), false);
    EXPECT_EQ(selection.currentRow(), rowOf("2019 年")) << "the keyboard stays where the folders were";
    EXPECT_EQ(selection.count(), 1);
    selection.select(rowOf("2020 年"));
    open("2019 年");
    EXPECT_EQ(selection.currentRow(), rowOf("2020 年"));
    EXPECT_TRUE(at(rowOf("2020 年"), OrganizeTreeModel::SelectedRole).toBool());
    tree_.toggleTicks(rowOf("甲")); // not among the selected ones
    EXPECT_EQ(at(rowOf("2020 年"), Role::TickRole).toInt(), OrganizeTreeModel::Unticked);
}

} // namespace
} // namespace corvane::testing
