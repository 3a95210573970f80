#include "screens/places/place_rows_model.h"

#include <algorithm>
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

QHash<int, QByteArray> PlaceRowsModel::roleNames() const {
    return {{NameRole, "name"},
            {PathRole, "path"},
            {SymbolRole, "symbol"},
            {IsDefaultRole, "isDefault"},
            {StateTextRole, "stateText"},
            {StateKindRole, "stateKind"},
            {StateSymbolRole, "stateSymbol"},
            {CountTextRole, "countText"},
            {SizeTextRole, "sizeText"},
            {SeenTextRole, "seenText"},
            {WorkTextRole, "workText"},
            {WorkShareRole, "workShare"},
            {TimeLeftTextRole, "timeLeftText"},
            {IsWaitingRole, "isWaiting"},
            {IsCountedRole, "isCounted"},
            {ReportKindRole, "reportKind"},
            {ReportTitleRole, "reportTitle"},
            {ReportLineRole, "reportLine"},
            {ReportDateRole, "reportDate"},
            {FindingsRole, "findings"},
            {FindingsLeftOutRole, "findingsLeftOut"},
            {OffersRebuildRole, "offersRebuild"},
            {CanVerifyRole, "canVerify"},
            {CanBeDefaultRole, "canBeDefault"},
            {CanShowRole, "canShow"},
            {CanForgetRole, "canForget"},
            {CanReplaceRole, "canReplace"},
            {SpokenNameRole, "spokenName"}};
}

QVariant PlaceRowsModel::value(const PlaceRow& row, int role) const {
    const ArchivePlace& place = row.place;
    const StateTexts state = textsOf(place);
    const bool isAtWork = !row.workText.isEmpty();
    switch (role) {
    case NameRole:
        return screens::shownLine(place.name);
    case PathRole:
        return row.pathText;
    case SymbolRole:
        return symbolOf(place);
    case IsDefaultRole:
        return place.isDefault;
    case StateTextRole:
        return QString::fromUtf16(state.text);
    case StateKindRole:
        return QString::fromUtf16(state.kind);
    case StateSymbolRole:
        return QString::fromUtf16(state.symbol);
    case CountTextRole:
        return countText(place);
    case SizeTextRole:
        return screens::shownSize(place.bytes);
    case SeenTextRole:
        return seenText(place);
    case WorkTextRole:
        return row.workText;
    case WorkShareRole:
        return row.workShare;
    case TimeLeftTextRole:
        return row.timeLeftText;
    case IsWaitingRole:
        return row.isWaiting;
    case IsCountedRole:
        return row.isCounted;
    case ReportKindRole:
        return row.report.kind;
    case ReportTitleRole:
        return row.report.title;
    case ReportLineRole:
        return row.report.line;
    case ReportDateRole:
        return row.report.dateText;
    case FindingsRole:
        return row.report.findings;
    case FindingsLeftOutRole:
        return row.report.findingsLeftOut;
    case OffersRebuildRole:
        return row.report.offersRebuild && !row.isBusy;
    case CanVerifyRole:
        return place.state.kind == Kind::connected && !isAtWork && !row.isBusy;
    case CanBeDefaultRole:
        return !place.isDefault && screens::isReachable(place) && !row.isBusy;
    case CanShowRole:
        return screens::isReachable(place);
    case CanForgetRole:
        return !isAtWork && !(row.isBusy && place.isDefault);
    case CanReplaceRole:
        return place.state.kind == Kind::gone && !row.isBusy;
    case SpokenNameRole:
        return spokenName(row);
    default:
        return {};
    }
}

} // namespace corvane
