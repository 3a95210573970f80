// The selected rows of a list and its current row: what a click, Shift and the command key make of them, and
// where they go when the list changes. Rows, not ids: the whole of a large list is one range. Main thread.
//
// The current row is what the detail shows; it is -1 without rows. The anchor is where a range begins. Lists
// whose selection is held elsewhere derive from it and keep the current row here.
#pragma once

#include <vector>

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include "screens/lists/row_ranges.h"

namespace corvane {

class ListSelection : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to its list")
    Q_PROPERTY(int currentRow READ currentRow NOTIFY currentRowChanged)
    Q_PROPERTY(int count READ count NOTIFY selectionChanged)

  public:
    using QObject::QObject;

    [[nodiscard]] int currentRow() const { return currentRow_; }

    [[nodiscard]] virtual int count() const { return rows_.count(); }

    [[nodiscard]] const RowRanges& rows() const { return rows_; }

    [[nodiscard]] Q_INVOKABLE virtual bool isSelected(int row) const { return rows_.contains(row); }

    // A row outside of the list means its nearest end.
    Q_INVOKABLE virtual void select(int row);

    // The range from the anchor in place of what was selected.
    Q_INVOKABLE virtual void extendTo(int row);

    Q_INVOKABLE virtual void toggle(int row);

    // Without selecting it.
    Q_INVOKABLE virtual void moveTo(int row);

    Q_INVOKABLE virtual void selectAll();

    // The list has changed: `newRows` as in RowChanges.
    virtual void remap(const std::vector<int>& newRows, int rowCount);

  Q_SIGNALS:
    // Rows from `first` to `last` may be selected or not any more.
    void selectionChanged(int first, int last);
    void currentRowChanged();

  protected:
    // The row, or the nearest end; -1 without rows.
    [[nodiscard]] int within(int row) const;
    void setCurrent(int row);

    void setRowCount(int rowCount) { rowCount_ = rowCount; }

  private:
    void replace(RowRanges rows);

    int rowCount_ = 0;
    int currentRow_ = -1;
    int anchor_ = -1;
    RowRanges rows_;
};

} // namespace corvane
