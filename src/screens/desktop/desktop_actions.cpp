#include "screens/desktop/desktop_actions.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QGuiApplication>

namespace corvane {

bool DesktopActions::open(const QUrl& url) {
    return QDesktopServices::openUrl(url);
}

bool DesktopActions::reveal(const QString& path) {
    // By its text: the place may not answer, and this is the main thread.
    return open(QUrl::fromLocalFile(path.left(path.lastIndexOf(u'/') + 1)));
}

void DesktopActions::copy(const QString& text) {
    QGuiApplication::clipboard()->setText(text);
}

} // namespace corvane
