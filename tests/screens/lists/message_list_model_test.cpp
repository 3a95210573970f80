#include "screens/lists/message_list_model.h"

#include <algorithm>
#include <random>

#include <QAbstractItemModelTester>

#include "records/archived/archive_records.h"
#include "screens/support/mail_samples.h"
#include "screens/texts/shown_text.h"
#include "support/temporary_home.h"

namespace corvane::testing {
namespace {

// What a view holds that hears only the model's signals.
class Mirror {
  public:
    explicit Mirror(MessageListModel& model)
      : model_(model) {
        QObject::connect(&model, &QAbstractItemModel::rowsInserted, [this](const auto&, int first, int last) {
            for (int row = first; row <= last; ++row) subjects_.insert(row, subjectAt(row));
        });
        QObject::connect(&model, &QAbstractItemModel::rowsRemoved, [this](const auto&, int first, int last) {
            subjects_.remove(first, last - first + 1);
        });
        QObject::connect(&model, &QAbstractItemModel::dataChanged,
                         [this](const auto& first, const auto& last) {
                             for (int row = first.row(); row <= last.row(); ++row)
                                 subjects_[row] = subjectAt(row);
                         });
    }

    [[nodiscard]] const QStringList& subjects() const { return subjects_; }

  private:
    [[nodiscard]] QString subjectAt(int row) const {
        return model_.data(model_.index(row), MessageListModel::SubjectRole).toString();
    }

    MessageListModel& model_;
    QStringList subjects_;
};

QStringList subjectsOf(const MessageList& messages) {
    QStringList subjects;
    for (const auto& message : messages) subjects += screens::shownLine(message.subject);
    return subjects;
}

RowChanges changesOf(const char* before, const char* after, const RowChangeRules& rules = largeListRules) {
    return messageRowChanges(*messagesOf(before), *messagesOf(after), rules);
}

void become(MessageListModel& model, const SharedMessageList& next,
            const RowChangeRules& rules = largeListRules) {
    model.apply(next, messageRowChanges(*model.records(), *next, rules));
}

TEST(MessageList, RowsThatStayAreNeverTakenAway) {
    const struct {
        const char* from;
        const char* to;
        std::vector<RowRun> removed, inserted;
    } cases[] = {
        {"", "abc", {}, {{0, 3}}},
        {"abc", "", {{0, 3}}, {}},
        {"abc", "abc", {}, {}},
        {"abc", "xabc", {}, {{0, 1}}},
        {"abcdef", "acxyf", {{1, 1}, {3, 2}}, {{2, 2}}},
        {"abc", "xyz", {{0, 3}}, {{0, 3}}},
    };

    for (const auto& [from, to, removed, inserted] : cases) {
        const RowChanges changes = changesOf(from, to);
        EXPECT_FALSE(changes.isReset) << from << " " << to;
        EXPECT_EQ(changes.removed, removed) << from << " " << to;
        EXPECT_EQ(changes.inserted, inserted) << from << " " << to;
        EXPECT_TRUE(changes.changed.empty());
    }
}

TEST(MessageList, ALargeListBeginsAnewAfterAnotherOrderOrTooManyChangesAndASmallOneMovesItsRows) {
    const RowChanges sorted = changesOf("abc", "cxa");
    EXPECT_TRUE(sorted.isReset);
    EXPECT_EQ(sorted.newRows, (std::vector<int>{2, -1, 0}));
    EXPECT_FALSE(changesOf("abcde", "ace", {.mostRuns = 2}).isReset);
    EXPECT_TRUE(changesOf("abcde", "ace", {.mostRuns = 1}).isReset);

    const RowChanges moved = changesOf("abcde", "bcxdae", {});
    EXPECT_FALSE(moved.isReset);
    EXPECT_EQ(moved.removed, (std::vector<RowRun>{{0, 1}}));
    EXPECT_EQ(moved.inserted, (std::vector<RowRun>{{2, 1}, {4, 1}}));
    EXPECT_EQ(moved.newRows, (std::vector<int>{4, 0, 1, 3, 5}));
}

TEST(MessageList, AMessageThatShowsSomethingElseChangesItsRowOnly) {
    auto next = std::make_shared<MessageList>(*messagesOf("abc"));
    (*next)[1].preview = "新的正文";
    (*next)[2].recipients = "不在行里显示";
    const RowChanges changes = messageRowChanges(*messagesOf("abc"), *next);
    EXPECT_EQ(changes.changed, (std::vector<RowRun>{{1, 1}}));
    EXPECT_TRUE(changes.removed.empty());
}

TEST(MessageList, AViewThatHearsOnlyTheSignalsHoldsTheSameRows) {
    MessageListModel model;
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    Mirror mirror(model);
    std::mt19937 random(7);
    for (int round = 0; round < 300; ++round) {
        std::string letters;
        for (char letter = 'a'; letter <= 'z'; ++letter) {
            if (random() % 3 != 0) letters += letter;
        }
        if (round % 10 == 0) std::shuffle(letters.begin(), letters.end(), random);
        become(model, messagesOf(letters), {.mostRuns = 8, .resetsOnNewOrder = round % 20 == 0});
        ASSERT_EQ(mirror.subjects(), subjectsOf(*model.records())) << letters;
    }
}

TEST(MessageList, SelectionAndCurrentRowFollowTheirMessages) {
    MessageListModel model;
    become(model, messagesOf("abcdef"));
    model.selection()->select(1);
    model.selection()->extendTo(3); // b c d

    become(model, messagesOf("xabdef")); // c goes, x comes
    EXPECT_EQ(model.selection()->rows().ranges(), (std::vector<RowRanges::Range>{{2, 4}}));
    EXPECT_EQ(model.selection()->currentRow(), 3);

    become(model, messagesOf("fedba")); // turned round
    EXPECT_EQ(model.selection()->rows().ranges(), (std::vector<RowRanges::Range>{{2, 4}}));
    EXPECT_EQ(model.selection()->currentRow(), 2);
    model.selection()->extendTo(4); // the anchor is still b
    EXPECT_EQ(model.selection()->rows().ranges(), (std::vector<RowRanges::Range>{{3, 5}}));

    become(model, messagesOf("fed"));
    EXPECT_EQ(model.selection()->count(), 0);
    EXPECT_EQ(model.selection()->currentRow(), -1);
}

TEST(MessageList, NoRowShowsASelectionThatIsNotItsOwn) {
    MessageListModel model;
    become(model, messagesOf("abcd"));
    model.selection()->select(3);
    QStringList seen = texts({"", "", "", ""});
    QObject::connect(&model, &QAbstractItemModel::rowsInserted, [&](const auto&, int first, int) {
        // A view makes rows as they come, while others are still to come.
        seen.insert(first, model.data(model.index(first), MessageListModel::SelectedRole).toString());
    });
    QObject::connect(&model, &QAbstractItemModel::rowsRemoved,
                     [&](const auto&, int first, int last) { seen.remove(first, last - first + 1); });
    QObject::connect(&model, &QAbstractItemModel::dataChanged, [&](const auto& first, const auto& last) {
        for (int row = first.row(); row <= last.row(); ++row) {
            seen[row] = model.data(model.index(row), MessageListModel::SelectedRole).toString();
        }
    });
    become(model, messagesOf("bcxd"));
    EXPECT_EQ(seen, texts({"false", "false", "false", "true"}));
}

struct EntryID {
    std::string operator()(const ArchivedEntry& entry) const { return entry.id(); }
};

class EntryList : public RecordListModel<ArchivedEntry, EntryID> {
  protected:
    [[nodiscard]] QVariant value(const ArchivedEntry& entry, int role) const override {
        return role == FirstRole ? QString::fromStdString(entry.record.subject.str()) : QVariant();
    }
};

TEST(RecordList, CarriesAnyRecordByAKeyThatIsMadeOfSeveralFields) {
    const auto entry = [](const char* root, const char* id, const char* subject) {
        ArchivedEntry made;
        made.locationRootPath = root;
        made.record.id = id;
        made.record.subject = subject;
        return made;
    };
    EntryList list;
    const QAbstractItemModelTester tester(&list, QAbstractItemModelTester::FailureReportingMode::Fatal);
    list.replace({entry("/a", "1", "x"), entry("/b", "1", "y")});
    list.selection()->select(1);
    const QPersistentModelIndex kept = list.index(1);
    list.replace({entry("/b", "1", "z"), entry("/c", "1", "w"), entry("/a", "1", "x")});
    EXPECT_EQ(kept.row(), 0);
    EXPECT_EQ(kept.data(EntryList::FirstRole).toString(), QStringLiteral("z"));
    EXPECT_EQ(list.selection()->currentRow(), 0);
    EXPECT_EQ(list.record(3), nullptr);
}

} // namespace
} // namespace corvane::testing
