// The accounts of Mail by what they occupy on this machine. Main thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <QString>
#include <QtQml/qqmlregistration.h>

#include "model/mail/index_counts.h"
#include "records/statistics_records.h"
#include "screens/lists/record_list_model.h"

namespace corvane {

struct SpaceAccount {
    std::string key;
    QString title;
    QString series; // of the share bar
    std::int64_t localCount = 0;
    std::int64_t localBytes = 0;
    std::optional<std::int64_t> cloudCount; // absent where the server's mail wasn't counted yet
    std::int64_t cloudBytes = 0;
    double share = 0; // 0 to 1, of the account with most mail, the server's with it
    bool isChosen = false;

    friend bool operator==(const SpaceAccount&, const SpaceAccount&) = default;
};

struct SpaceAccountKey {
    std::string_view operator()(const SpaceAccount& account) const { return account.key; }
};

class SpaceAccountsModel : public RecordListModel<SpaceAccount, SpaceAccountKey> {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("part of the space screen")

  public:
    enum Role {
        TitleRole = FirstRole,
        SeriesRole,
        LocalTextRole,
        LocalSizeRole,
        CloudTextRole,
        CloudSizeRole,
        ShareRole,
        LocalShareRole, // 0 to 1, of the account's own mail
        HasCloudRole,
        ChosenRole,
        SpokenNameRole,
    };

    using RecordListModel::RecordListModel;

    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    // Of the mail that the server alone has Mail's index knows more than is listed.
    void show(const std::vector<SpaceAccountUsage>& usage, const IndexCounts& counts,
              const std::string& chosenKey);

  protected:
    [[nodiscard]] QVariant value(const SpaceAccount& account, int role) const override;
};

} // namespace corvane
