// The accounts and the addresses of a group that is being edited, each with its mail. Main thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <QtQml/qqmlregistration.h>

#include "screens/lists/record_list_model.h"

namespace corvane {

struct CollectionRow {
    std::string key; // a base key or an address
    std::string title;
    std::optional<std::int64_t> count{}; // absent until it is counted
    std::int64_t bytes = 0;
    bool isTicked = false;

    friend bool operator==(const CollectionRow&, const CollectionRow&) = default;
};

struct CollectionRowKey {
    std::string_view operator()(const CollectionRow& row) const { return row.key; }
};

class CollectionRowsModel : public RecordListModel<CollectionRow, CollectionRowKey> {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("part of an address collection")

  public:
    enum Role { TitleRole = FirstRole, CountTextRole, SizeTextRole, IsTickedRole };

    using RecordListModel::RecordListModel;

    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

  protected:
    [[nodiscard]] QVariant value(const CollectionRow& row, int role) const override;
};

} // namespace corvane
