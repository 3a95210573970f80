// The rows of the library's list over its shared snapshot. What a row shows is made when it is asked for; the
// texts of bodies come later. Main thread.
#pragma once

#include <cstdint>
#include <functional>

#include <QtQml/qqmlregistration.h>

#include "library/library_selection.h"
#include "model/components/library_components.h"
#include "screens/library/rows/library_rows.h"
#include "screens/library/rows/row_texts.h"
#include "screens/lists/row_list_model.h"

namespace corvane {

class LibraryRowModel : public RowListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the library")

  public:
    enum Role {
        KindRole = FirstRole, // "single", "thread", "member"
        OpenRole,
        LastRole,
        TitleRole,
        TitlePiecesRole, // empty where nothing is marked, as those below
        LineRole,
        LinePiecesRole,
        SnippetPiecesRole,
        TallRole, // there is a line for the snippet
        MemberCountRole,
        AttachmentCountRole,
        DateTextRole,
        SizeTextRole,
        PlaceSymbolRole,
        SpokenNameRole,
    };

    // Both must outlive it.
    LibraryRowModel(LibraryComponents& library, RowTexts& texts, QObject* parent = nullptr);

    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] const RowsOfList& content() const { return content_; }

    // The model's list isn't one of another index already, of which the rows are being made.
    [[nodiscard]] bool isOfPresentIndex() const {
        return content_.list->inputs.index == library_.list.list()->inputs.index;
    }

    // Null for a row that isn't there.
    [[nodiscard]] const LibraryRow* rowAt(int row) const;

    // Null for a row that isn't there; valid until the next change.
    [[nodiscard]] const ArchivedEntry* entryAt(int row) const;

    // `changes` lead from the present rows to the given ones.
    void apply(RowsOfList content, const RowChanges& changes);

    // Of the list's index; which rows are selected follows from it.
    void setShownSelection(LibrarySelection selection);

    [[nodiscard]] const LibrarySelection& shownSelection() const { return shown_; }

    // The row of an entry: of the mail itself where its thread is open, else of the thread. -1 when it isn't
    // listed. Linear.
    [[nodiscard]] int rowOf(EntryPosition entry) const;

    // Which files and places are there has changed.
    void notifyPlaces() { notifyAllRows({PlaceSymbolRole, SpokenNameRole}); }

    // The line of a row for the clipboard: date, sender, subject, size.
    [[nodiscard]] static QString copiedLine(const ArchivedEmailRecord& record);

  private:
    [[nodiscard]] QVariant value(const LibraryRow& row, int role) const;
    // Of a closed thread: one of its mails is, so that nothing is selected unseen.
    [[nodiscard]] bool isSelected(const LibraryRow& row) const;
    [[nodiscard]] QString title(const LibraryRow& row) const;
    [[nodiscard]] QString secondLine(const LibraryRow& row) const;
    [[nodiscard]] QVariantList piecesOf(const LibraryRow& row, int role) const;
    [[nodiscard]] QString senders(const LibraryRow& row) const;
    [[nodiscard]] QString placeSymbol(const ArchivedEntry& entry) const;
    [[nodiscard]] std::int64_t bytes(const LibraryRow& row) const;
    [[nodiscard]] bool isTall(const LibraryRow& row) const;
    [[nodiscard]] QString spokenName(const LibraryRow& row) const;

    [[nodiscard]] const ArchivedEntry& entry(const LibraryRow& row) const {
        return content_.list->index().entry(row.entry);
    }

    [[nodiscard]] const LibrarySubjectGroup& group(const LibraryRow& row) const {
        return content_.list->groups.view().groups[row.group];
    }

    LibraryComponents& library_;
    RowTexts& texts_;
    RowsOfList content_;
    LibrarySelection shown_;
};

} // namespace corvane
