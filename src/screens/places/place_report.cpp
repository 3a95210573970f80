#include "screens/places/place_report.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

#include <QVariantMap>

#include "records/texts/formatters.h"
#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

using screens::shownCount;
using screens::shownMessageCount;
using Kind = ArchivePlaceState::Kind;

constexpr qsizetype pathLimit = 5000;
// Of more the list can be copied.
constexpr std::size_t mostFindings = 20;

void addFinding(PlaceReport& report, const std::string& path, const QString& fault) {
    if (std::cmp_less(report.findings.size(), mostFindings))
        report.findings.append(QVariantMap{{QStringLiteral("path"), screens::shownLine(path)},
                                           {QStringLiteral("fault"), fault}});
    else
        ++report.findingsLeftOut;
}

// Without a hash a changed byte isn't seen: that is no proof.
QString verificationKind(const ArchiveVerdict& verdict) {
    if (verdict.findings.empty())
        return verdict.withoutHash > 0 ? QStringLiteral("info") : QStringLiteral("safe");
    const bool isMailSound =
        std::ranges::all_of(verdict.findings, [](const ArchiveVerdict::Finding& finding) {
            return finding.fault == ArchiveVerdict::Fault::unrecorded;
        });
    return isMailSound ? QStringLiteral("attention") : QStringLiteral("danger");
}

PlaceReport verificationReport(const PlaceJobs::End& end) {
    const ArchiveVerdict& verdict = end.verdict;
    PlaceReport report;
    report.kind = verificationKind(verdict);
    const auto found = static_cast<std::int64_t>(verdict.findings.size());
    if (found > 0)
        report.title = QStringLiteral("%1完好，%2 个文件有问题")
                           .arg(shownMessageCount(verdict.intact), shownCount(found));
    else
        report.title = (verdict.withoutHash > 0 ? QStringLiteral("%1都读过，没有发现问题")
                                                : QStringLiteral("完整：%1都读过，与记录一致"))
                           .arg(shownMessageCount(verdict.checked));
    if (verdict.withoutHash > 0)
        report.line = QStringLiteral("其中 %1没有校验值，只核对了大小和邮件头。")
                          .arg(shownMessageCount(verdict.withoutHash));
    for (const ArchiveVerdict::Finding& finding : verdict.findings)
        addFinding(report, finding.path, screens::faultText(finding.fault));
    return report;
}

PlaceReport rebuildReport(const PlaceJobs::End& end) {
    PlaceReport report;
    report.kind = end.failures.empty() ? QStringLiteral("safe") : QStringLiteral("attention");
    report.title = QStringLiteral("索引已重建，收入 %1").arg(shownMessageCount(end.adopted));
    if (!end.failures.empty())
        report.line = QStringLiteral("%1 个文件没有收入：")
                          .arg(shownCount(static_cast<std::int64_t>(end.failures.size())));
    for (const ArchiveRebuild::Failure& failure : end.failures)
        addFinding(report, failure.path, screens::shownLine(failure.reason));
    return report;
}

} // namespace

namespace screens {

bool lacksIndex(const ArchivePlace& place) {
    return place.state.kind == Kind::withoutIndex || place.state.kind == Kind::damagedIndex;
}

PlaceReport endReport(const PlaceJobs::End& end) {
    PlaceReport report;
    if (!end.error.empty()) {
        report.kind = QStringLiteral("attention");
        report.title = end.work == PlaceJobs::Work::verification ? QStringLiteral("没有校验完")
                                                                 : QStringLiteral("索引没有重建");
        report.line = shownText(end.error, pathLimit);
    } else {
        report = end.work == PlaceJobs::Work::verification ? verificationReport(end) : rebuildReport(end);
    }
    report.dateText = wholeText(formatListDate(end.at));
    return report;
}

PlaceReport needReport(const ArchivePlace& place) {
    PlaceReport report;
    report.kind = QStringLiteral("attention");
    report.title =
        QStringLiteral("归档索引%1。这里有 %2 个 .eml 文件，可以重新建好。")
            .arg(place.state.kind == Kind::damagedIndex ? QStringLiteral("损坏了") : QStringLiteral("不见了"),
                 shownCount(place.state.mails));
    report.offersRebuild = true;
    return report;
}

QString faultText(ArchiveVerdict::Fault fault) {
    using enum ArchiveVerdict::Fault;
    switch (fault) {
    case missing:
        return QStringLiteral("文件不见了");
    case altered:
        return QStringLiteral("内容被改动过");
    case otherSize:
        return QStringLiteral("大小与记录不符");
    case otherMail:
        return QStringLiteral("不是记录里的那封邮件");
    case unreadable:
        return QStringLiteral("无法读取，情况未知");
    case repeatedPath:
        return QStringLiteral("不止一条记录指向它");
    case unrecorded:
        break;
    }
    return QStringLiteral("索引里没有它");
}

} // namespace screens

} // namespace corvane
