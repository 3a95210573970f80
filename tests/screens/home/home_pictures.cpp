// Paints the home and the archive flow in every state, both modes and both sizes, for people to look at:
//   home_pictures FOLDER [STATE...]
#include <filesystem>
#include <functional>

#include <QGuiApplication>
#include <QQuickItem>
#include <QTest>

#include "screens/appearance.h"
#include "screens/fonts.h"
#include "screens/home/window_scene.h"

namespace {

using corvane::testing::WindowScene;

void tickSome(WindowScene& scene) {
    auto& tree = *scene.window().home()->tree();
    const auto tick = [&](const char* title, int from) {
        tree.toggleTick(scene.treeRow(QString::fromUtf8(title), from));
    };
    tick("2018 年", 0);
    tick("2019 年", 0);
    tree.setExpanded(scene.treeRow(QStringLiteral("2020 年")), true);
    tick("收件箱", 0);
    tick("客户往来", 0);
}

void openConfirmation(WindowScene& scene) {
    tickSome(scene);
    for (const char* folder :
         {"Library/Mobile Documents/com~apple~CloudDocs", "Library/CloudStorage/Nutstore-linzy@mail.example",
          "Library/CloudStorage/GoogleDrive-zhiyuan@linjia.example/My Drive"}) {
        scene.home().makeFolder(folder);
    }
    scene.platform().plugIn("归档盘 A");
    scene.window().home()->runOrganizePrimaryAction();
    scene.settle();
    scene.window().archive()->candidates()->toggleTick(4);
}

// Of the ticked messages those of 2018 have their files; the others fail.
void runToItsEnd(WindowScene& scene) {
    openConfirmation(scene);
    scene.window().archive()->start();
    scene.settle();
}

struct State {
    const char* name;
    std::function<void(WindowScene&)> make;
};

const std::vector<State>& states() {
    static const std::vector<State> all = {
        {"a-home",
         [](WindowScene& scene) {
             scene.fill();
             tickSome(scene);
         }},
        {"a-home-unticked", [](WindowScene& scene) { scene.fill(); }},
        {"a-home-narrowed",
         [](WindowScene& scene) {
             scene.fill();
             scene.window().home()->setScopeYear(2021);
         }},
        {"b-home-first", [](WindowScene&) {}},
        {"d-home-no-access",
         [](WindowScene& scene) {
             scene.home().write("Library/Mail/V10/MailData/Envelope Index", "");
             scene.window().home()->recheckAccess();
             scene.settle();
         }},
        {"e-archive-confirm",
         [](WindowScene& scene) {
             scene.fill();
             openConfirmation(scene);
         }},
        {"e-archive-no-place",
         [](WindowScene& scene) {
             scene.fill();
             openConfirmation(scene);
             std::filesystem::remove_all(scene.home().at("Documents/邮件归档"));
             scene.model().destinations().refreshFacts();
             scene.settle();
         }},
        {"f-archive-running",
         [](WindowScene& scene) {
             scene.fill();
             openConfirmation(scene);
             scene.platform().onAvailableCapacity([&scene] { scene.waitForRelease(); });
             scene.window().archive()->start();
         }},
        {"e-archive-error",
         [](WindowScene& scene) {
             scene.fill();
             openConfirmation(scene);
             std::filesystem::remove_all(scene.home().at("Documents"));
             scene.home().write("Documents", "");
             scene.window().archive()->start();
             scene.settle();
         }},
        {"g-archive-result",
         [](WindowScene& scene) {
             scene.fill();
             runToItsEnd(scene);
         }},
    };
    return all;
}

bool paint(const State& state, QSize size, const std::string& path) {
    WindowScene scene;
    state.make(scene);
    QQmlApplicationEngine engine;
    engine.addImportPath(QStringLiteral(":/qt/qml"));
    engine.setInitialProperties({{QStringLiteral("app"), QVariant::fromValue(&scene.window())}});
    engine.load(QUrl(QStringLiteral("qrc:/qt/qml/Corvane/qml/shell/Main.qml")));
    if (engine.rootObjects().isEmpty()) return false;
    auto* window = qobject_cast<QQuickWindow*>(engine.rootObjects().front());
    window->resize(size);
    window->show();
    if (!QTest::qWaitForWindowExposed(window)) return false;
    // Figures change once a second.
    QTest::qWait(1400);
    const bool isSaved = window->grabWindow().save(QString::fromStdString(path));
    scene.release();
    return isSaved;
}

} // namespace

int main(int argc, char** argv) {
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 3) {
        std::fputs("home_pictures FOLDER light|dark [STATE...]\n", stderr);
        return 2;
    }
    corvane::useWindowFonts();
    const bool dark = arguments[2] == QLatin1String("dark");
    const corvane::Appearance appearance(dark ? corvane::Appearance::Scheme::dark
                                              : corvane::Appearance::Scheme::light);
    std::filesystem::create_directories(arguments[1].toStdString());
    bool allPainted = true;
    for (const State& state : states()) {
        if (arguments.size() > 3 && !arguments.mid(3).contains(QString::fromUtf8(state.name))) continue;
        for (const QSize& size : {QSize(1240, 840), QSize(1000, 560)}) {
            const std::string path = arguments[1].toStdString() + "/" + state.name +
                                     (size.width() == 1000 ? "-small" : "") +
                                     (dark ? "-dark.png" : "-light.png");
            allPainted &= paint(state, size, path);
        }
    }
    return allPainted ? 0 : 1;
}
