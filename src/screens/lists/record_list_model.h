// A list model over a shared snapshot of records of any kind. `KeyOf` gives the key by which a record is the
// same one in the next snapshot. Rows come, go and change in place; what a row shows is made when it is asked
// for. Main thread.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "screens/lists/row_list_model.h"

namespace corvane {

template <class Record, class KeyOf>
class RecordListModel : public RowListModel {
  public:
    using Records = std::vector<Record>;
    using SharedRecords = std::shared_ptr<const Records>;

    using RowListModel::RowListModel;

    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const final {
        if (!index.isValid() || index.row() >= rowCount()) return {};
        if (role == SelectedRole) return selection()->isSelected(index.row());
        return value((*records_)[static_cast<std::size_t>(listedRow(index.row()))], role);
    }

    [[nodiscard]] const SharedRecords& records() const { return records_; }

    // Null for a row that isn't there.
    [[nodiscard]] const Record* record(int row) const {
        return row >= 0 && row < count() ? &(*records_)[static_cast<std::size_t>(row)] : nullptr;
    }

    // `changes` lead from the present records to the given ones.
    void apply(SharedRecords records, const RowChanges& changes) {
        const int nextCount = static_cast<int>(records->size());
        applyChanges(changes, nextCount, [&] { records_ = std::move(records); });
    }

    // Compares at once, so for lists of up to some thousand rows. Where the rows of before have gone.
    std::vector<int> replace(Records records) {
        const RowChanges changes = rowChanges(*records_, records, KeyOf());
        apply(std::make_shared<const Records>(std::move(records)), changes);
        return changes.newRows;
    }

  protected:
    // What a record shows in a role, which is never `SelectedRole`; invalid for one it doesn't know.
    [[nodiscard]] virtual QVariant value(const Record& record, int role) const = 0;

  private:
    SharedRecords records_ = std::make_shared<const Records>();
};

} // namespace corvane
