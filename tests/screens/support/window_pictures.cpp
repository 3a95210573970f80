#include "screens/support/window_pictures.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <unordered_map>
#include <utility>

#include <QGuiApplication>
#include <QImage>
#include <QQmlApplicationEngine>
#include <QTest>

#include "screens/controls/theme/appearance.h"
#include "screens/controls/theme/fonts.h"

namespace corvane::testing {

namespace {

// In the colours that it has most of, near ones taken as one: a window needs few, and such a file is small.
QImage inFewColours(const QImage& picture) {
    std::unordered_map<QRgb, int> counts;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x) ++counts[picture.pixel(x, y)];
    std::vector<std::pair<int, QRgb>> byCount;
    for (const auto& [colour, count] : counts) byCount.emplace_back(count, colour);
    std::sort(byCount.rbegin(), byCount.rend());
    QList<QRgb> table;
    for (const auto& [count, colour] : byCount) {
        const auto isNear = [wanted = colour](QRgb other) {
            return std::abs(qRed(wanted) - qRed(other)) + std::abs(qGreen(wanted) - qGreen(other)) +
                       std::abs(qBlue(wanted) - qBlue(other)) <
                   12;
        };
        if (table.size() < 256 && std::none_of(table.begin(), table.end(), isNear)) table.append(colour);
    }
    return picture.convertToFormat(QImage::Format_Indexed8, table, Qt::ThresholdDither | Qt::AvoidDither);
}

bool paint(const PictureState& state, QSize size, const std::string& path, bool inFew = false) {
    WindowScene scene;
    state.make(scene);
    QQmlApplicationEngine engine;
    engine.addImportPath(QStringLiteral(":/qt/qml"));
    engine.setInitialProperties({{QStringLiteral("app"), QVariant::fromValue(&scene.window())}});
    engine.load(QUrl(QStringLiteral("qrc:/qt/qml/Corvane/shell/Main.qml")));
    if (engine.rootObjects().isEmpty()) return false;
    auto* window = qobject_cast<QQuickWindow*>(engine.rootObjects().front());
    window->resize(size);
    window->show();
    if (!QTest::qWaitForWindowExposed(window)) return false;
    // The sidebar's figures change once a second.
    QTest::qWait(1500);
    if (state.inWindow) state.inWindow(scene, *window);
    const QImage picture = window->grabWindow();
    const bool isSaved =
        (inFew ? inFewColours(picture) : picture).save(QString::fromStdString(path), "PNG", 0);
    scene.release();
    return isSaved;
}

bool paintInBothSizes(const PictureState& state, const std::string& folder, bool dark) {
    const std::string ending = dark ? "-dark.png" : "-light.png";
    const std::string path = folder + "/" + state.name;
    const bool isUsualPainted = paint(state, QSize(1240, 840), path + ending);
    return paint(state, QSize(1000, 560), path + "-small" + ending) && isUsualPainted;
}

bool paintForReadme(const std::vector<PictureState>& states, const std::string& folder) {
    bool allPainted = true;
    for (const PictureState& state : states)
        allPainted &= paint(state, QSize(1240, 840), folder + "/" + state.name + ".png", true);
    return allPainted;
}

} // namespace

int paintPictures(int argc, char** argv, const std::vector<PictureState>& states,
                  const std::vector<PictureState>& readmeStates) {
    thinTextStems();
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 3) {
        std::fputs("FOLDER light|dark [STATE...], or FOLDER readme\n", stderr);
        return 2;
    }
    useWindowFonts();
    const bool dark = arguments[2] == QLatin1String("dark");
    const Appearance appearance(dark ? Appearance::Scheme::dark : Appearance::Scheme::light);
    std::filesystem::create_directories(arguments[1].toStdString());
    if (arguments[2] == QLatin1String("readme"))
        return paintForReadme(readmeStates, arguments[1].toStdString()) ? 0 : 1;
    bool allPainted = true;
    for (const PictureState& state : states) {
        if (arguments.size() > 3 && !arguments.mid(3).contains(QString::fromUtf8(state.name))) continue;
        allPainted &= paintInBothSizes(state, arguments[1].toStdString(), dark);
    }
    return allPainted ? 0 : 1;
}

} // namespace corvane::testing
