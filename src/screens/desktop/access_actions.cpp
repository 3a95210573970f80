#include "screens/desktop/access_actions.h"

#include <QUrl>

#include "records/formatters.h"

namespace corvane {

AccessActions::AccessActions(CorvaneViewModel& model, DesktopActions& desktop, QObject* parent)
  : QObject(parent)
  , model_(model)
  , desktop_(desktop) {
    connect(&model.scanFlow(), &ScanFlow::restorableChanged, this, &AccessActions::restorableChanged);
    connect(&model.scanFlow(), &ScanFlow::stateChanged, this, &AccessActions::restorableChanged);
}

void AccessActions::recheckAccess() {
    model_.diskAccess().refreshFullDiskAccessState();
}

void AccessActions::openPrivacySettings() {
    const QUrl settings(
        QStringLiteral("x-apple.systempreferences:com.apple.preference.security?Privacy_AllFiles"));
    if (!desktop_.open(settings))
        Q_EMIT failed(QStringLiteral("无法打开系统设置，请手动打开「完全磁盘访问权限」。"));
}

void AccessActions::cancelScan() {
    model_.scanFlow().cancelScan();
}

QString AccessActions::restoreTitle() const {
    const auto time = model_.scanFlow().restorableScanTime();
    if (!time) return {};
    return QStringLiteral("恢复 %1 的完整结果").arg(QString::fromStdString(formatListDate(*time)));
}

void AccessActions::restoreLastScan() {
    if (model_.scanFlow().restorableScanTime()) model_.scanFlow().loadCachedScanIfNeeded(false);
}

} // namespace corvane
