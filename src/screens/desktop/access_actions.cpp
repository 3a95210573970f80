#include "screens/desktop/access_actions.h"

#include <QUrl>

namespace corvane {

AccessActions::AccessActions(CorvaneViewModel& model, DesktopActions& desktop, QObject* parent)
  : QObject(parent)
  , model_(model)
  , desktop_(desktop) {}

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

} // namespace corvane
