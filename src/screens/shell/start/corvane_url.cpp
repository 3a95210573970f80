#include "screens/shell/start/corvane_url.h"

#include <QUrl>
#include <QUrlQuery>

namespace corvane {

std::optional<QString> folderOfUrl(const QString& address) {
    const QUrl url(address);
    if (!url.isValid() || url.scheme() != QLatin1String("corvane") || url.host() != QLatin1String("open"))
        return std::nullopt;
    QString path = QUrlQuery(url).queryItemValue(QStringLiteral("path"), QUrl::FullyDecoded);
    if (!path.startsWith(QLatin1Char('/')) || path.contains(QChar::Null)) return std::nullopt;
    return path;
}

} // namespace corvane
