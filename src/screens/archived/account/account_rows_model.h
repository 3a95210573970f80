// The years of one account with the folders and the mail of those that are open, as one flat list. Main
// thread. A row is some numbers; its texts are made when it is shown, so that a folder of 100,000 mails opens
// at once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>

#include <QtQml/qqmlregistration.h>

#include "model/library/overview/overview_state.h"
#include "screens/archived/figures/year_status.h"
#include "screens/lists/record_list_model.h"

namespace corvane {

enum class AccountRowLevel : std::uint8_t { year, folder, entry, undated };

struct AccountRow {
    std::uint64_t key = 0;
    std::uint64_t version = 0; // of what it shows
    AccountRowLevel level = AccountRowLevel::year;
    bool isExpanded = false;
    std::uint32_t year = 0;   // place in the group
    std::uint32_t folder = 0; // place in the year
    EntryPosition entry = 0;

    friend bool operator==(const AccountRow&, const AccountRow&) = default;
};

struct AccountRowKey {
    std::uint64_t operator()(const AccountRow& row) const { return row.key; }
};

class AccountRowsModel : public RecordListModel<AccountRow, AccountRowKey> {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("part of the archived overview")

  public:
    // AccountRowLevel as QML knows it.
    enum Level {
        Year = static_cast<int>(AccountRowLevel::year),
        Folder = static_cast<int>(AccountRowLevel::folder),
        Entry = static_cast<int>(AccountRowLevel::entry),
        Undated = static_cast<int>(AccountRowLevel::undated),
    };
    Q_ENUM(Level)

    enum Role {
        LevelRole = FirstRole,
        TitleRole,
        ExpandedRole,
        StatusRole, // `label`, `symbol` and `tone` of a year or a folder
        PresentRole,
        RemovedRole,
        FreeableRole,
        SenderRole,
        DateTextRole,
        LineRole, // `symbol`, `text` and `tone` of a mail
        CanLocateRole,
        HelpRole,
        SpokenNameRole,
    };

    // What is shown; pointers into the overview, null for nothing.
    struct Source {
        SharedOverview overview{};
        const ArchivedOverviewGroup* group = nullptr;
        const ArchivedOverviewStats::Group* stats = nullptr;
        OriginalKnowledge knowledge = OriginalKnowledge::loading;
    };

    using RecordListModel::RecordListModel;

    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    void show(Source source);
    void collapseAll();

    Q_INVOKABLE void setExpanded(int row, bool expanded);

    // For the arrow keys; -1 when there is none.
    Q_INVOKABLE [[nodiscard]] int parentRow(int row) const;
    Q_INVOKABLE [[nodiscard]] int firstChildRow(int row) const;

    // Null for a row that is no mail.
    [[nodiscard]] const ArchivedEntry* entryAt(int row) const;

  protected:
    [[nodiscard]] QVariant value(const AccountRow& row, int role) const override;

  private:
    void refresh();
    [[nodiscard]] Records makeRows() const;
    void addFolders(Records& rows, std::uint32_t year) const;
    [[nodiscard]] std::string keyOf(const AccountRow& row) const;
    [[nodiscard]] QVariant yearValue(const AccountRow& row, int role) const;
    [[nodiscard]] QVariant folderValue(const AccountRow& row, int role) const;
    [[nodiscard]] QVariant entryValue(const AccountRow& row, int role) const;
    [[nodiscard]] QString spokenName(const AccountRow& row) const;
    [[nodiscard]] ArchivedOriginalPresenceStatus presenceOf(const AccountRow& row) const;

    Source source_;
    std::uint64_t version_ = 0;
    std::set<std::string> expandedKeys_; // of years and folders
};

} // namespace corvane
