#include "screens/desktop/desktop_actions.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QFileInfo>
#include <QGuiApplication>

namespace corvane {

bool DesktopActions::open(const QUrl& url) {
    return QDesktopServices::openUrl(url);
}

bool DesktopActions::reveal(const QString& path) {
    return open(QUrl::fromLocalFile(QFileInfo(path).absolutePath()));
}

void DesktopActions::copy(const QString& text) {
    QGuiApplication::clipboard()->setText(text);
}

} // namespace corvane
