// The selection of the library's list for its view: rows of the list, entries in the model. The model says
// which entries are selected and shown; the current row is kept here, as a thread and its latest mail are one
// entry and two rows. Main thread.
#pragma once

#include <vector>

#include <QtQml/qqmlregistration.h>

#include "model/library/library_list_flow.h"
#include "screens/library/rows/library_row_model.h"
#include "screens/lists/list_selection.h"

namespace corvane {

class LibraryRowSelection : public ListSelection {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the library")

  public:
    // Both must outlive it.
    LibraryRowSelection(LibraryListFlow& flow, LibraryRowModel& rows, QObject* parent = nullptr);

    [[nodiscard]] int count() const override;
    [[nodiscard]] bool isSelected(int row) const override;
    void select(int row) override;
    void extendTo(int row) override;
    void toggle(int row) override;
    void selectAll() override;

    // The rows have changed. Where the current one has gone, the next that stayed is selected in its place.
    void remap(const std::vector<int>& newRows, int rowCount) override;

    // The row of what is shown, where the current row isn't of it.
    void showSelected();

    // The selected entries, as positions in the index of the rows; of nothing selected the shown one.
    [[nodiscard]] std::vector<EntryPosition> entries() const;

  private:
    void choose(int row, SelectionKeys keys);

    LibraryListFlow& flow_;
    LibraryRowModel& rows_;
};

} // namespace corvane
