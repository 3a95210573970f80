// The tree account, year, folder of the organize home, as one flat list of the rows that are open. Main
// thread. It changes by row, never as a whole, so that the view keeps its place. It holds the ticks, what is
// open, and the scope to which the tree is narrowed; ticks outside of the scope stay.
#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <string_view>

#include <QtQml/qqmlregistration.h>

#include "listing/deletion/organize_sections.h"
#include "listing/deletion/organize_ticks.h"
#include "screens/lists/record_list_model.h"

namespace corvane {

enum class OrganizeLevel { account, year, folder };

struct OrganizeRow {
    OrganizeLevel level = OrganizeLevel::account;
    std::string key;
    QString title;
    std::int64_t count = 0;
    std::int64_t bytes = 0;
    double share = 0; // 0 to 1, of the largest year that is shown
    TickState tick = TickState::off;
    bool isExpanded = false;
    bool isExpandable = true;
    // Positions in the overview.
    std::size_t section = 0;
    std::size_t year = 0;
    std::size_t folder = 0;

    friend bool operator==(const OrganizeRow&, const OrganizeRow&) = default;
};

struct OrganizeRowKey {
    std::string_view operator()(const OrganizeRow& row) const { return row.key; }
};

class OrganizeTreeModel : public RecordListModel<OrganizeRow, OrganizeRowKey> {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("part of the home screen")
    Q_PROPERTY(int tickState READ tickState NOTIFY ticksChanged)
    Q_PROPERTY(QString tickHelp READ tickHelp NOTIFY ticksChanged)

  public:
    // OrganizeLevel as QML knows it.
    enum Level {
        Account = static_cast<int>(OrganizeLevel::account),
        Year = static_cast<int>(OrganizeLevel::year),
        Folder = static_cast<int>(OrganizeLevel::folder),
    };
    Q_ENUM(Level)

    // As the tick box of the controls has them.
    enum Tick { Unticked, Ticked, Mixed };
    Q_ENUM(Tick)

    enum Role {
        LevelRole = FirstRole,
        TitleRole,
        CountRole,
        SizeRole,
        ShareRole, // 0 to 1, of the largest year that is shown
        TickRole,
        ExpandedRole,
        ExpandableRole,
        TickHelpRole,
        ExpandHelpRole,
        AccessibleTextRole,
    };

    using RecordListModel::RecordListModel;

    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    // Drops the ticks of what has gone.
    void setOverview(SharedOrganizeOverview overview);
    void setScope(const OrganizeScope& scope);

    [[nodiscard]] const SharedOrganizeOverview& overview() const { return overview_; }

    [[nodiscard]] const OrganizeTicks& ticks() const { return ticks_; }

    // A `Tick`: of everything in the scope.
    [[nodiscard]] int tickState() const;
    [[nodiscard]] QString tickHelp() const;

    Q_INVOKABLE void toggleTick(int row);

    // Of all selected rows where this is one of them: they take the tick that it gets.
    Q_INVOKABLE void toggleTicks(int row);
    Q_INVOKABLE void toggleAllTicks();
    Q_INVOKABLE void tickAll();
    Q_INVOKABLE void setExpanded(int row, bool expanded);

    // For the arrow keys; -1 when there is none.
    Q_INVOKABLE [[nodiscard]] int parentRow(int row) const;
    Q_INVOKABLE [[nodiscard]] int firstChildRow(int row) const;

    // The selected rows as lines of text, each with what it stands under.
    [[nodiscard]] QString selectedLines() const;

  Q_SIGNALS:
    void ticksChanged();

  protected:
    [[nodiscard]] QVariant value(const OrganizeRow& row, int role) const override;

  private:
    [[nodiscard]] Records makeRows() const;
    void addYear(Records& rows, std::size_t section, std::size_t year, double wholeBytes) const;
    void show();
    void setTick(const OrganizeRow& row, bool ticked);
    void setAllTicks(bool ticked);
    void handleTickChange();

    SharedOrganizeOverview overview_ = std::make_shared<const OrganizeOverview>();
    OrganizeScope scope_;
    OrganizeTicks ticks_;
    std::set<std::string> collapsedAccountKeys_;
    std::set<std::string> expandedOrganizeYearKeys_;
};

} // namespace corvane
