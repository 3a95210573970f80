// Base of the list models whose rows come, go and change in place: what doesn't depend on the record of a
// row. It knows how many rows there are, which of them are selected, and which rows a view may ask for while
// it is being told of changes. Main thread.
//
// A view that wants to keep its place looks where it stands at `aboutToChange` and goes back at `changed`.
#pragma once

#include <functional>
#include <vector>

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>

#include "screens/lists/list_selection.h"
#include "screens/lists/row_changes.h"

namespace corvane {

class RowListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(int count READ count NOTIFY countChanged)
    Q_PROPERTY(corvane::ListSelection* selection READ selection CONSTANT)

  public:
    // The roles of a derived class begin at `FirstRole`.
    enum BaseRole { SelectedRole = Qt::UserRole, FirstRole };

    explicit RowListModel(QObject* parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;

    [[nodiscard]] int count() const { return count_; }

    [[nodiscard]] ListSelection* selection() { return &selection_; }

    [[nodiscard]] const ListSelection* selection() const { return &selection_; }

    // The row in the present list of one in the list before the last change; what a view asks at `changed`.
    // -1 for a row that has gone, and at any other time.
    [[nodiscard]] Q_INVOKABLE int rowAfterChange(int earlierRow) const;

  Q_SIGNALS:
    void countChanged();
    void aboutToChange();
    void changed();

  protected:
    // Tells the view of `changes`, which lead to a list of `nextCount` rows; `replace` puts that in the place
    // of the present one and is called once, in the middle. The selection goes with its rows.
    void applyChanges(const RowChanges& changes, int nextCount, const std::function<void()>& replace);

    // Where a row lies in the derived class's list. Another place than the row itself only while rows go and
    // come: some of the list's rows aren't shown any more, or not yet.
    [[nodiscard]] int listedRow(int row) const;

    // No rows beyond the last; without `roles` all of them.
    void notifyRows(int first, int last, const QList<int>& roles = {});

    void notifyAllRows(const QList<int>& roles = {}) { notifyRows(0, count_ - 1, roles); }

    // Those that changed rows may show otherwise; empty for all.
    [[nodiscard]] virtual QList<int> rolesOfChange() const { return {}; }

  private:
    void replaceAllRows(int nextCount, const std::function<void()>& replace);
    void removeRuns(const std::vector<RowRun>& runs);
    void insertRuns(const std::vector<RowRun>& runs, int nextCount);

    int count_ = 0;              // of the list, hidden rows among them
    std::vector<RowRun> hidden_; // rows of the list that aren't shown at the moment, in order
    int hiddenRows_ = 0;
    std::vector<int> newRows_;
    ListSelection selection_;
};

} // namespace corvane
