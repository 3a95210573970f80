#include "screens/support/window_pictures.h"

#include <cstdio>
#include <filesystem>
#include <string>

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QTest>

#include "screens/controls/theme/appearance.h"
#include "screens/controls/theme/fonts.h"

namespace corvane::testing {

namespace {

bool paint(const PictureState& state, QSize size, const std::string& path) {
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
    const bool isSaved = window->grabWindow().save(QString::fromStdString(path));
    scene.release();
    return isSaved;
}

bool paintInBothSizes(const PictureState& state, const std::string& folder, bool dark) {
    const std::string ending = dark ? "-dark.png" : "-light.png";
    const std::string path = folder + "/" + state.name;
    const bool isUsualPainted = paint(state, QSize(1240, 840), path + ending);
    return paint(state, QSize(1000, 560), path + "-small" + ending) && isUsualPainted;
}

} // namespace

int paintPictures(int argc, char** argv, const std::vector<PictureState>& states) {
    thinTextStems();
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 3) {
        std::fputs("FOLDER light|dark [STATE...]\n", stderr);
        return 2;
    }
    useWindowFonts();
    const bool dark = arguments[2] == QLatin1String("dark");
    const Appearance appearance(dark ? Appearance::Scheme::dark : Appearance::Scheme::light);
    std::filesystem::create_directories(arguments[1].toStdString());
    bool allPainted = true;
    for (const PictureState& state : states) {
        if (arguments.size() > 3 && !arguments.mid(3).contains(QString::fromUtf8(state.name))) continue;
        allPainted &= paintInBothSizes(state, arguments[1].toStdString(), dark);
    }
    return allPainted ? 0 : 1;
}

} // namespace corvane::testing
