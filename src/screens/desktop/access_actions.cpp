#include "screens/desktop/access_actions.h"

#include <utility>

#include <QStringList>
#include <QTime>
#include <QUrl>

#include "records/texts/formatters.h"

namespace corvane {

namespace {

QString stateOf(const platform::PathAccess& access) {
    if (!access.isThere) return QStringLiteral("没能查看");
    if (access.canRead && access.canEnter) return QStringLiteral("在，但读不出内容");
    return access.isFolder ? QStringLiteral("在，但不能打开") : QStringLiteral("在，但不能读取");
}

QString missingRightsOf(const platform::PathAccess& access) {
    QStringList rights;
    if (!access.canRead) rights += QStringLiteral("「读取」");
    if (!access.canEnter) rights += QStringLiteral("「进入」");
    if (rights.isEmpty() || !access.isThere) return {};
    return QStringLiteral("%1 的%2").arg(QString::fromStdString(access.user),
                                         rights.join(QStringLiteral("和")));
}

QVariantMap shownObstacle(const platform::PathAccess& access) {
    QVariantMap shown{{QStringLiteral("path"), QString::fromStdString(access.path)},
                      {QStringLiteral("kind"), access.isFolder || !access.isThere
                                                   ? QStringLiteral("这个文件夹")
                                                   : QStringLiteral("这个文件")},
                      {QStringLiteral("symbol"), access.isFolder || !access.isThere ? QStringLiteral("folder")
                                                                                    : QStringLiteral("file")},
                      {QStringLiteral("state"), stateOf(access)},
                      {QStringLiteral("missing"), missingRightsOf(access)}};
    if (!access.isThere) return shown;
    shown[QStringLiteral("owner")] =
        QStringLiteral("%1（uid %2）").arg(QString::fromStdString(access.owner)).arg(access.ownerID);
    shown[QStringLiteral("mode")] = QString::fromStdString(platform::modeText(access));
    return shown;
}

} // namespace

AccessActions::AccessActions(MailComponents& mail, DesktopActions& desktop, QObject* parent)
  : QObject(parent)
  , mail_(mail)
  , desktop_(desktop) {
    connect(&mail.scanFlow, &ScanFlow::restorableChanged, this, &AccessActions::restorableChanged);
    connect(&mail.scanFlow, &ScanFlow::stateChanged, this, &AccessActions::restorableChanged);
    connect(&mail.diskAccess, &FullDiskAccess::checkStarted, this, &AccessActions::accessChanged);
    connect(&mail.diskAccess, &FullDiskAccess::checked, this, &AccessActions::handleChecked);
}

// Answers also where nothing has changed, or nobody knows whether the press has arrived.
void AccessActions::handleChecked() {
    if (std::exchange(isAsked_, false) && mail_.diskAccess.needsFullDiskAccess()) {
        answer_ = QStringLiteral("%1 又检查了一次，仍然不能读取。")
                      .arg(QTime::currentTime().toString(QStringLiteral("HH:mm:ss")));
    }
    Q_EMIT accessChanged();
}

QVariantMap AccessActions::obstacle() const {
    const auto& found = mail_.diskAccess.obstacle();
    return found ? shownObstacle(*found) : QVariantMap();
}

QString AccessActions::summary() const {
    const auto& found = mail_.diskAccess.obstacle();
    if (!found) return QStringLiteral("需要你授权一次，才能读取 Apple Mail 的数据。");
    return missingRightsOf(*found).isEmpty() ? QStringLiteral("还读不到 Apple Mail 的数据。")
                                             : QStringLiteral("缺少一项权限，还读不到 Apple Mail 的数据。");
}

void AccessActions::copyObstaclePath() {
    if (const auto& found = mail_.diskAccess.obstacle()) desktop_.copy(QString::fromStdString(found->path));
}

void AccessActions::recheckAccess() {
    isAsked_ = true;
    mail_.diskAccess.refreshFullDiskAccessState();
}

void AccessActions::openPrivacySettings() {
    const QUrl settings(
        QStringLiteral("x-apple.systempreferences:com.apple.preference.security?Privacy_AllFiles"));
    if (!desktop_.open(settings))
        Q_EMIT failed(QStringLiteral("无法打开系统设置，请手动打开「完全磁盘访问权限」。"));
}

void AccessActions::cancelScan() {
    mail_.scanFlow.cancelScan();
}

QString AccessActions::restoreTitle() const {
    const auto time = mail_.scanFlow.restorableScanTime();
    if (!time) return {};
    return QStringLiteral("恢复 %1 的完整结果").arg(QString::fromStdString(formatListDate(*time)));
}

void AccessActions::restoreLastScan() {
    if (mail_.scanFlow.restorableScanTime()) mail_.scanFlow.loadCachedScanIfNeeded(false);
}

} // namespace corvane
