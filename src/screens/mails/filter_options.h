// A short list of values by which a list is narrowed, each with its count and tick. Rows change in place.
// Main thread.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>

namespace corvane {

struct FilterOption {
    std::string key;
    QString title;
    std::int64_t count = 0;
    bool isTicked = false;

    friend bool operator==(const FilterOption&, const FilterOption&) = default;
};

class FilterOptions : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to its filter")
    Q_PROPERTY(int count READ count NOTIFY countChanged)

  public:
    enum Role { TitleRole = Qt::UserRole + 1, CountTextRole, TickedRole };

    using QAbstractListModel::QAbstractListModel;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] int count() const { return static_cast<int>(options_.size()); }

    [[nodiscard]] const std::vector<FilterOption>& options() const { return options_; }

    void setOptions(std::vector<FilterOption> options);

  Q_SIGNALS:
    void countChanged();

  private:
    std::vector<FilterOption> options_;
};

} // namespace corvane
