// The accounts of the archived overview, each with a cell a year. Main thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <QString>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

#include "model/library/overview/overview_state.h"
#include "screens/archived/figures/overview_figures.h"
#include "screens/archived/figures/year_status.h"
#include "screens/lists/record_list_model.h"

namespace corvane {

struct ArchivedAccount {
    std::string key;
    QString title;
    ArchivedShares shares;
    std::int64_t undownloaded = 0;
    OriginalKnowledge knowledge = OriginalKnowledge::loading;
    QVariantList cells; // of all years that any account has, each with `label`, `key`, `symbol` and `text`

    friend bool operator==(const ArchivedAccount&, const ArchivedAccount&) = default;
};

struct ArchivedAccountKey {
    std::string_view operator()(const ArchivedAccount& account) const { return account.key; }
};

class ArchivedAccountsModel : public RecordListModel<ArchivedAccount, ArchivedAccountKey> {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("part of the archived overview")

  public:
    enum Role {
        TitleRole = FirstRole,
        FactsRole, // each with `symbol` and `text`
        SizeRole,
        CountRole,
        FreesRole,
        CellsRole,
        SpokenNameRole,
    };

    using RecordListModel::RecordListModel;

    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    void show(const ArchivedOverview& overview, OriginalKnowledge knowledge, ArchivedOverviewFilter filter);

  protected:
    [[nodiscard]] QVariant value(const ArchivedAccount& account, int role) const override;
};

} // namespace corvane
