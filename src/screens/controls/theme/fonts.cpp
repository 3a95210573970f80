#include "screens/controls/theme/fonts.h"

#include <array>

#include <QFont>
#include <QFontDatabase>
#include <QGuiApplication>

namespace corvane {

namespace {

constexpr std::array chineseFamilies = {"PingFang SC",    "Noto Sans CJK SC",    "Source Han Sans SC",
                                        "Noto Sans SC",   "WenQuanYi Micro Hei", "WenQuanYi Zen Hei",
                                        "Microsoft YaHei"};

QStringList presentChineseFamilies() {
    QStringList present;
    const QStringList installed = QFontDatabase::families();
    for (const char* family : chineseFamilies)
        if (installed.contains(QLatin1String(family))) present.append(QString::fromLatin1(family));
    return present;
}

// Without a desktop the font is an alias that stands for whatever the system finds first.
bool isAlias(const QString& family) {
    static const QStringList aliases = {QString(), QStringLiteral("Sans Serif"), QStringLiteral("Sans"),
                                        QStringLiteral("sans-serif")};
    return aliases.contains(family);
}

} // namespace

void thinTextStems() {
    // Pairs of stem width and what is added to it, in thousandths of the size: two fifths of FreeType's own.
    if (!qEnvironmentVariableIsSet("FREETYPE_PROPERTIES"))
        qputenv("FREETYPE_PROPERTIES", "cff:darkening-parameters=500,160,1000,110,1667,110,2333,0");
}

void useWindowFonts() {
    QFont font = QGuiApplication::font();
    QStringList families = presentChineseFamilies();
    if (!isAlias(font.family())) families.prepend(font.family());
    if (families.isEmpty()) return;
    font.setFamilies(families);
    QGuiApplication::setFont(font);
}

bool hasChineseFont() {
    return !presentChineseFamilies().isEmpty() ||
           !QFontDatabase::families(QFontDatabase::SimplifiedChinese).isEmpty();
}

} // namespace corvane
