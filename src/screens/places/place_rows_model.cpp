#include "screens/places/place_rows_model.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "records/texts/formatters.h"
#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

using screens::shownCount;
using screens::shownMessageCount;
using Kind = ArchivePlaceState::Kind;

constexpr qsizetype pathLimit = 5000;

struct StateTexts {
    const char16_t* text;
    const char16_t* kind;
    const char16_t* symbol;
};

StateTexts textsOf(const ArchivePlace& place) {
    if (place.areFilesGone) return {u"邮件文件不见了", u"danger", u"octagon-x"};
    switch (place.state.kind) {
    case Kind::connected:
        return {u"已连接", u"", u"circle-check"};
    case Kind::unused:
        return {u"还没有邮件", u"", u"circle-dashed"};
    case Kind::withoutIndex:
        return {u"没有索引", u"attention", u"triangle-alert"};
    case Kind::damagedIndex:
        return {u"索引已损坏", u"attention", u"triangle-alert"};
    case Kind::unplugged:
        return {u"未连接", u"attention", u"unplug"};
    case Kind::gone:
        return {u"文件夹不在了", u"danger", u"octagon-x"};
    case Kind::unanswered:
        break;
    }
    return {u"没有响应", u"attention", u"circle-question-mark"};
}

QString symbolOf(const ArchivePlace& place) {
    if (place.state.kind == Kind::unplugged) return QStringLiteral("unplug");
    switch (place.kind) {
    case ArchiveLocation::Kind::cloud:
        return QStringLiteral("cloud");
    case ArchiveLocation::Kind::removable:
        return QStringLiteral("hard-drive");
    case ArchiveLocation::Kind::local:
        break;
    }
    return QStringLiteral("folder");
}

// Without an index the files are what is known.
QString countText(const ArchivePlace& place) {
    const std::int64_t count = std::max(place.count, place.state.mails);
    return count > 0 ? shownMessageCount(count) : QStringLiteral("—");
}

QString seenText(const ArchivePlace& place) {
    if (screens::isReachable(place)) return QStringLiteral("现在");
    return place.lastSeen ? screens::wholeText(formatListDate(*place.lastSeen)).left(10)
                          : QStringLiteral("—");
}

QString spokenName(const PlaceRow& row) {
    QStringList parts = {screens::shownLine(row.place.name)};
    if (row.place.isDefault) parts += QStringLiteral("默认");
    parts += QString::fromUtf16(textsOf(row.place).text);
    parts << countText(row.place) << screens::shownSize(row.place.bytes)
          << QStringLiteral("上次见到 ") + seenText(row.place) << row.workText << row.report.title;
    parts.removeAll(QString());
    return parts.join(QStringLiteral("，"));
}

QString workText(const PlaceJobs::Job& job, bool isWaiting) {
    if (isWaiting) return QStringLiteral("排队中");
    const QString verb = job.work == PlaceJobs::Work::verification ? QStringLiteral("正在校验")
                                                                   : QStringLiteral("正在重建索引");
    if (job.all == 0) return verb + QStringLiteral("…");
    return QStringLiteral("%1 %2 / %3")
        .arg(verb, shownCount(static_cast<std::int64_t>(job.done)),
             shownCount(static_cast<std::int64_t>(job.all)));
}

} // namespace

namespace screens {

bool isReachable(const ArchivePlace& place) {
    return place.state.kind != Kind::unplugged && place.state.kind != Kind::gone &&
           place.state.kind != Kind::unanswered;
}

PlaceRow placeRow(const PlaceRowInput& input) {
    PlaceRow row{.place = input.place, .isWaiting = input.isWaiting, .isBusy = input.isBusy};
    row.pathText = shownPath(shownLine(input.place.root, pathLimit), input.home);
    if (input.job != nullptr) {
        row.workText = workText(*input.job, input.isWaiting);
        row.timeLeftText = input.timeLeftText;
        row.isCounted = input.job->all > 0;
        if (row.isCounted)
            row.workShare = static_cast<double>(input.job->done) / static_cast<double>(input.job->all);
    } else if (lacksIndex(input.place) && (input.end == nullptr || input.end->error.empty())) {
        row.report = needReport(input.place);
    } else if (input.end != nullptr) {
        row.report = endReport(*input.end);
        row.report.offersRebuild = lacksIndex(input.place);
    }
    return row;
}

} // namespace screens

namespace {

bool isAtWork(const PlaceRow& row) {
    return !row.workText.isEmpty();
}

struct Column {
    PlaceRowsModel::Role role;
    const char* name;
    QVariant (*value)(const PlaceRow& row);
};

using Row = const PlaceRow&;
using Model = PlaceRowsModel;

const auto columns = std::to_array<Column>({
    {Model::NameRole, "name", [](Row row) { return QVariant(screens::shownLine(row.place.name)); }},
    {Model::PathRole, "path", [](Row row) { return QVariant(row.pathText); }},
    {Model::SymbolRole, "symbol", [](Row row) { return QVariant(symbolOf(row.place)); }},
    {Model::IsDefaultRole, "isDefault", [](Row row) { return QVariant(row.place.isDefault); }},
    {Model::StateTextRole, "stateText",
     [](Row row) { return QVariant(QString::fromUtf16(textsOf(row.place).text)); }},
    {Model::StateKindRole, "stateKind",
     [](Row row) { return QVariant(QString::fromUtf16(textsOf(row.place).kind)); }},
    {Model::StateSymbolRole, "stateSymbol",
     [](Row row) { return QVariant(QString::fromUtf16(textsOf(row.place).symbol)); }},
    {Model::CountTextRole, "countText", [](Row row) { return QVariant(countText(row.place)); }},
    {Model::SizeTextRole, "sizeText", [](Row row) { return QVariant(screens::shownSize(row.place.bytes)); }},
    {Model::SeenTextRole, "seenText", [](Row row) { return QVariant(seenText(row.place)); }},
    {Model::WorkTextRole, "workText", [](Row row) { return QVariant(row.workText); }},
    {Model::WorkShareRole, "workShare", [](Row row) { return QVariant(row.workShare); }},
    {Model::TimeLeftTextRole, "timeLeftText", [](Row row) { return QVariant(row.timeLeftText); }},
    {Model::IsWaitingRole, "isWaiting", [](Row row) { return QVariant(row.isWaiting); }},
    {Model::IsCountedRole, "isCounted", [](Row row) { return QVariant(row.isCounted); }},
    {Model::ReportKindRole, "reportKind", [](Row row) { return QVariant(row.report.kind); }},
    {Model::ReportTitleRole, "reportTitle", [](Row row) { return QVariant(row.report.title); }},
    {Model::ReportLineRole, "reportLine", [](Row row) { return QVariant(row.report.line); }},
    {Model::ReportDateRole, "reportDate", [](Row row) { return QVariant(row.report.dateText); }},
    {Model::FindingsRole, "findings", [](Row row) { return QVariant(row.report.findings); }},
    {Model::FindingsLeftOutRole, "findingsLeftOut",
     [](Row row) { return QVariant(row.report.findingsLeftOut); }},
    {Model::OffersRebuildRole, "offersRebuild",
     [](Row row) { return QVariant(row.report.offersRebuild && !row.isBusy); }},
    {Model::CanVerifyRole, "canVerify",
     [](Row row) {
         return QVariant(row.place.state.kind == Kind::connected && !isAtWork(row) && !row.isBusy);
     }},
    {Model::CanBeDefaultRole, "canBeDefault",
     [](Row row) {
         return QVariant(!row.place.isDefault && screens::isReachable(row.place) && !row.isBusy);
     }},
    {Model::CanShowRole, "canShow", [](Row row) { return QVariant(screens::isReachable(row.place)); }},
    {Model::CanForgetRole, "canForget",
     [](Row row) { return QVariant(!isAtWork(row) && !(row.isBusy && row.place.isDefault)); }},
    {Model::CanReplaceRole, "canReplace",
     [](Row row) { return QVariant(row.place.state.kind == Kind::gone && !row.isBusy); }},
    {Model::SpokenNameRole, "spokenName", [](Row row) { return QVariant(spokenName(row)); }},
});

} // namespace

QHash<int, QByteArray> PlaceRowsModel::roleNames() const {
    QHash<int, QByteArray> names;
    for (const Column& column : columns) names.insert(column.role, column.name);
    return names;
}

QVariant PlaceRowsModel::value(const PlaceRow& row, int role) const {
    const auto isOfRole = [role](const Column& each) { return each.role == role; };
    const auto* const found = std::ranges::find_if(columns, isOfRole);
    return found == columns.end() ? QVariant() : found->value(row);
}

} // namespace corvane
