#include "app/open_requests.h"

#include <QCoreApplication>
#include <QFileOpenEvent>
#include <QUrl>
#include <QUrlQuery>

namespace corvane {

namespace {

QString addressOf(const QUrl& url) {
    if (!url.isLocalFile()) return url.toString(QUrl::FullyEncoded);
    QUrlQuery query;
    query.addQueryItem(QStringLiteral("path"),
                       QString::fromLatin1(QUrl::toPercentEncoding(url.toLocalFile())));
    QUrl address;
    address.setScheme(QStringLiteral("corvane"));
    address.setHost(QStringLiteral("open"));
    address.setQuery(query);
    return address.toString(QUrl::FullyEncoded);
}

} // namespace

OpenRequests::OpenRequests(QObject* parent)
  : QObject(parent) {
    QCoreApplication::instance()->installEventFilter(this);
}

bool OpenRequests::eventFilter(QObject* object, QEvent* event) {
    if (event->type() != QEvent::FileOpen) return QObject::eventFilter(object, event);
    Q_EMIT requested(addressOf(static_cast<QFileOpenEvent*>(event)->url()));
    return true;
}

} // namespace corvane
