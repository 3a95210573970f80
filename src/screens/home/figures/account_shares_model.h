// The accounts beside the tree: what each still has to archive, and how far it is. The first row is all of
// them. Main thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <QtQml/qqmlregistration.h>

#include "listing/organize_sections.h"
#include "screens/lists/row_list_model.h"

namespace corvane {

class AccountSharesModel : public RowListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("part of the home screen")
    Q_PROPERTY(int count READ count NOTIFY countChanged)

  public:
    enum Role { TitleRole = Qt::UserRole, LineRole, SizeRole, ArchivedRole, UnarchivedRole, ChosenRole };

    using RowListModel::RowListModel;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] int count() const { return rowCount(); }

    void show(const OrganizeOverview& overview, const std::optional<std::string>& chosenKey);

    // Absent for the row of all.
    [[nodiscard]] std::optional<std::string> keyAt(int row) const;

  Q_SIGNALS:
    void countChanged();

  private:
    struct Row {
        std::string key; // empty for all
        QString title;
        std::int64_t archived = 0;
        std::int64_t unarchived = 0;
        std::int64_t unarchivedBytes = 0;
        bool isChosen = false;

        friend bool operator==(const Row&, const Row&) = default;
    };

    std::vector<Row> rows_;
};

} // namespace corvane
