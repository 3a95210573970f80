// A short list of values by which a list is narrowed, each with its count and tick. Main thread.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <QString>
#include <QtQml/qqmlregistration.h>

#include "screens/lists/record_list_model.h"

namespace corvane {

struct FilterOption {
    std::string key;
    QString title;
    std::int64_t count = 0;
    bool isTicked = false;

    friend bool operator==(const FilterOption&, const FilterOption&) = default;
};

struct FilterOptionKey {
    std::string_view operator()(const FilterOption& option) const { return option.key; }
};

class FilterOptions : public RecordListModel<FilterOption, FilterOptionKey> {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to its filter")

  public:
    enum Role { TitleRole = FirstRole, CountTextRole, TickedRole };

    using RecordListModel::RecordListModel;

    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

  protected:
    [[nodiscard]] QVariant value(const FilterOption& option, int role) const override;
};

} // namespace corvane
