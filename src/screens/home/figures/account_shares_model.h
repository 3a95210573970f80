// The accounts beside the tree: what each still has to archive, and how far it is. The first row is all of
// them. Main thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <QString>
#include <QtQml/qqmlregistration.h>

#include "listing/deletion/organize_sections.h"
#include "screens/lists/record_list_model.h"

namespace corvane {

struct AccountShare {
    std::string key; // empty for all
    QString title;
    std::int64_t archived = 0;
    std::int64_t unarchived = 0;
    std::int64_t unarchivedBytes = 0;
    bool isChosen = false;

    friend bool operator==(const AccountShare&, const AccountShare&) = default;
};

struct AccountShareKey {
    std::string_view operator()(const AccountShare& share) const { return share.key; }
};

class AccountSharesModel : public RecordListModel<AccountShare, AccountShareKey> {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("part of the home screen")

  public:
    enum Role { TitleRole = FirstRole, LineRole, SizeRole, ArchivedRole, UnarchivedRole, ChosenRole };

    using RecordListModel::RecordListModel;

    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    void show(const OrganizeOverview& overview, const std::optional<std::string>& chosenKey);

    // Absent for the row of all.
    [[nodiscard]] std::optional<std::string> keyAt(int row) const;

  protected:
    [[nodiscard]] QVariant value(const AccountShare& share, int role) const override;
};

} // namespace corvane
