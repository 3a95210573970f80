#include "screens/controls/theme/desktop_looks.h"

#include <QSettings>

namespace corvane {

namespace {

std::optional<bool> truthOf(const QSettings& settings, const QString& key) {
    const QString text = settings.value(key).toString().trimmed().toLower();
    if (text == QStringLiteral("1") || text == QStringLiteral("true")) return true;
    if (text == QStringLiteral("0") || text == QStringLiteral("false")) return false;
    return std::nullopt;
}

// A theme of that name is dark, whatever the application would like.
bool namesDarkTheme(const QSettings& settings) {
    return settings.value(QStringLiteral("Settings/gtk-theme-name"))
        .toString()
        .endsWith(QStringLiteral("-dark"), Qt::CaseInsensitive);
}

} // namespace

DesktopLooks DesktopLooks::of(const QString& configFolder) {
    DesktopLooks looks;
    for (const char* version : {"gtk-4.0", "gtk-3.0"}) {
        const QSettings settings(configFolder + u'/' + QLatin1String(version) +
                                     QStringLiteral("/settings.ini"),
                                 QSettings::IniFormat);
        if (!looks.animates)
            looks.animates = truthOf(settings, QStringLiteral("Settings/gtk-enable-animations"));
        if (!looks.isDark)
            looks.isDark = truthOf(settings, QStringLiteral("Settings/gtk-application-prefer-dark-theme"));
        if (looks.isDark != true && namesDarkTheme(settings)) looks.isDark = true;
    }
    const QSettings kde(configFolder + QStringLiteral("/kdeglobals"), QSettings::IniFormat);
    bool isNumber = false;
    const double factor =
        kde.value(QStringLiteral("KDE/AnimationDurationFactor")).toString().toDouble(&isNumber);
    if (!looks.animates && isNumber) looks.animates = factor > 0;
    return looks;
}

} // namespace corvane
