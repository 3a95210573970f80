#include <cstdlib>
#include <utility>

#include <QDirIterator>
#include <gtest/gtest.h>

#include "screens/controls/theme/symbol.h"

namespace corvane {

namespace {

QStringList iconNames() {
    QStringList names;
    QDirIterator files(QStringLiteral(":/qt/qml/Corvane/icons"));
    while (files.hasNext()) names.append(QFileInfo(files.next()).completeBaseName());
    return names;
}

// How many pixels have ink, and whether all of it is of one colour.
std::pair<int, bool> inkOf(const QImage& image, const QColor& color) {
    int inked = 0;
    bool pure = true;
    const QImage plain = image.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < plain.height(); ++y) {
        for (int x = 0; x < plain.width(); ++x) {
            const QColor pixel = plain.pixelColor(x, y);
            if (pixel.alpha() < 128) continue;
            ++inked;
            pure =
                pure && std::abs(pixel.red() - color.red()) < 8 && std::abs(pixel.blue() - color.blue()) < 8;
        }
    }
    return {inked, pure};
}

TEST(Symbol, EveryIconIsDrawnInTheWantedColourAndSize) {
    const QColor color(200, 40, 90);
    const QStringList names = iconNames();
    EXPECT_EQ(names.size(), 54);
    for (const QString& name : names) {
        for (const int pixels : {16, 48}) {
            const QImage image = Symbol::drawing(name, color, pixels, 1.75);
            ASSERT_EQ(image.size(), QSize(pixels, pixels)) << name.toStdString();
            const auto [inked, pure] = inkOf(image, color);
            EXPECT_GT(inked, 3) << name.toStdString();
            EXPECT_TRUE(pure) << name.toStdString();
        }
    }
}

TEST(Symbol, SystemNamesFindTheirIconAndUnknownOnesAFile) {
    const std::pair<const char*, const char*> cases[] = {{"icloud.fill", "cloud"},
                                                         {"externaldrive.badge.questionmark", "unplug"},
                                                         {"mail", "mail"},
                                                         {"film", "film"},
                                                         {"no.such.symbol", "file"},
                                                         {"../icons/mail", "file"},
                                                         {"", "file"}};
    for (const auto& [name, icon] : cases)
        EXPECT_EQ(Symbol::iconFor(QString::fromLatin1(name)).toStdString(), icon) << name;
}

} // namespace

} // namespace corvane
