// The largest senders of one account, with ticks. Main thread.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <QString>
#include <QtQml/qqmlregistration.h>

#include "library/overview/space_detail.h"
#include "records/statistics_records.h"
#include "screens/lists/record_list_model.h"

namespace corvane {

struct SpaceSender {
    std::string key;
    QString name;
    std::int64_t count = 0;
    std::int64_t bytes = 0;
    double share = 0; // 0 to 1, of the largest sender
    bool isTicked = false;

    friend bool operator==(const SpaceSender&, const SpaceSender&) = default;
};

struct SpaceSenderKey {
    std::string_view operator()(const SpaceSender& sender) const { return sender.key; }
};

class SpaceSendersModel : public RecordListModel<SpaceSender, SpaceSenderKey> {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("part of the space screen")

  public:
    enum Role {
        NameRole = FirstRole,
        AddressRole, // empty where it is the name
        CountRole,
        SizeRole,
        ShareRole,
        TickedRole,
        SpokenNameRole,
    };

    using RecordListModel::RecordListModel;

    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    void show(const SpaceAccountUsage& account, const SpaceSenderTicks& ticks);

    void clear() { replace({}); }

    // The selected rows as lines of text.
    [[nodiscard]] QString selectedLines() const;

  protected:
    [[nodiscard]] QVariant value(const SpaceSender& sender, int role) const override;
};

} // namespace corvane
