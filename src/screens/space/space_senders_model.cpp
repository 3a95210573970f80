#include "screens/space/space_senders_model.h"

#include <algorithm>
#include <utility>

#include <QStringList>

#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

using screens::shownMessageCount;
using screens::shownSize;

QString addressOf(const SpaceSender& sender) {
    QString address = screens::shownLine(sender.key);
    return address.compare(sender.name, Qt::CaseInsensitive) == 0 ? QString() : address;
}

} // namespace

QHash<int, QByteArray> SpaceSendersModel::roleNames() const {
    return {{NameRole, "name"},
            {AddressRole, "address"},
            {CountRole, "count"},
            {SizeRole, "size"},
            {ShareRole, "share"},
            {TickedRole, "ticked"},
            {SpokenNameRole, "spokenName"},
            {SelectedRole, "selected"}};
}

QVariant SpaceSendersModel::value(const SpaceSender& sender, int role) const {
    switch (role) {
    case NameRole:
        return sender.name;
    case AddressRole:
        return addressOf(sender);
    case CountRole:
        return shownMessageCount(sender.count);
    case SizeRole:
        return shownSize(sender.bytes);
    case ShareRole:
        return sender.share;
    case TickedRole:
        return sender.isTicked;
    case SpokenNameRole:
        return QStringLiteral("%1，%2，%3，%4")
            .arg(sender.name, shownMessageCount(sender.count), shownSize(sender.bytes),
                 sender.isTicked ? QStringLiteral("已勾选") : QStringLiteral("未勾选"));
    default:
        return {};
    }
}

void SpaceSendersModel::show(const SpaceAccountUsage& account, const SpaceSenderTicks& ticks) {
    std::int64_t most = 1;
    for (const SpaceSenderStat& sender : account.topSenders) most = std::max(most, sender.bytes);
    Records rows;
    for (const SpaceSenderStat& sender : account.topSenders) {
        QString name = screens::shownLine(sender.displayName);
        if (name.isEmpty()) name = QStringLiteral("没有发件人");
        rows.push_back({.key = sender.senderKey,
                        .name = std::move(name),
                        .count = sender.messageCount,
                        .bytes = sender.bytes,
                        .share = static_cast<double>(sender.bytes) / static_cast<double>(most),
                        .isTicked = ticks.isTicked(sender.senderKey)});
    }
    replace(std::move(rows));
}

QString SpaceSendersModel::selectedLines() const {
    QStringList lines;
    selection()->rows().forEach([&](int row) {
        const SpaceSender& sender = *record(row);
        lines += QStringList{sender.name, screens::wholeText(sender.key), shownMessageCount(sender.count),
                             shownSize(sender.bytes)}
                     .join(QStringLiteral(" · "));
    });
    return lines.join(u'\n');
}

} // namespace corvane
