#include "screens/home/scan_status.h"

#include <chrono>

#include <QVariantMap>

#include "records/texts/formatters.h"
#include "records/timestamps.h"
#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

using screens::shownCount;
using screens::shownLine;

// From then on a scan is worth repeating before one decides about years of mail.
constexpr std::chrono::days freshness(7);

} // namespace

ScanStatus::ScanStatus(MailComponents& mail, ArchiveScreen& archive, QObject* parent)
  : QObject(parent)
  , mail_(mail)
  , archive_(archive) {
    tick_.setInterval(std::chrono::seconds(1));
    connect(&tick_, &QTimer::timeout, this, &ScanStatus::elapsedChanged);
    connect(&mail_.scanFlow, &ScanFlow::stateChanged, this, &ScanStatus::refresh);
    connect(&archive_, &ArchiveScreen::stageChanged, this, &ScanStatus::changed);
    connect(&mail_.accounts, &AccountDirectory::accountsChanged, this, &ScanStatus::accountsChanged);
    refresh();
}

void ScanStatus::refresh() {
    if (isScanning() && !tick_.isActive()) {
        clock_.start();
        tick_.start();
    } else if (!isScanning()) {
        tick_.stop();
    }
    Q_EMIT changed();
    Q_EMIT elapsedChanged();
}

QString ScanStatus::updatedText() const {
    const auto& date = mail_.scanFlow.cacheLoadedAt();
    if (!date || isScanning()) return {};
    const QString text = screens::wholeText(formatListDate(*date)) + QStringLiteral(" 更新");
    return currentTimestamp() - *date > freshness ? text + QStringLiteral(" · 建议重新扫描") : text;
}

QString ScanStatus::updateTitle() const {
    return isScanning() ? QStringLiteral("正在更新 Mail 数据") : QStringLiteral("更新 Mail 数据");
}

QString ScanStatus::line() const {
    return isScanning() ? screens::wholeText(mail_.scanFlow.state().text) : QString();
}

QString ScanStatus::elapsed() const {
    return clock_.isValid() ? screens::shownDuration(clock_.elapsed() / 1000) : QString();
}

QVariantList ScanStatus::accounts() const {
    QVariantList shown;
    for (const MailAccount& account : mail_.accounts.availableAccounts()) {
        const QString kind =
            account.isLocalStore ? QStringLiteral("本机") : screens::wholeText(account.scheme).toUpper();
        shown << QVariantMap{{QStringLiteral("name"), shownLine(account.distinguishedLabel())},
                             {QStringLiteral("symbol"),
                              account.isLocalStore ? QStringLiteral("folder") : QStringLiteral("at-sign")},
                             {QStringLiteral("line"),
                              QStringLiteral("%1 · %2 个文件夹")
                                  .arg(kind, shownCount(static_cast<std::int64_t>(account.folders.size())))}};
    }
    return shown;
}

QString ScanStatus::failureText() const {
    const MailScanState& scan = mail_.scanFlow.state();
    return scan.kind == MailScanState::Kind::failed ? screens::wholeText(scan.text) : QString();
}

void ScanStatus::update() {
    if (canUpdate()) mail_.scanFlow.refreshAllMailData();
}

} // namespace corvane
