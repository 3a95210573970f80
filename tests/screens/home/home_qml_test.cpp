// Runs the tst_*.qml files of this folder: the whole window over a real model and made-up mail. Whatever the
// engine warns of fails the test in which it happens.
#include <filesystem>
#include <memory>
#include <utility>

#include <QQmlContext>
#include <QQmlEngine>
#include <QtQuickTest>

#include "screens/controls/theme/appearance.h"
#include "screens/controls/theme/fonts.h"
#include "screens/home/window_scene.h"

namespace corvane::testing {

// What a test asks of the scene; `begin` makes a new one.
class Scenes : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::WindowModel* app READ app NOTIFY begun)

  public:
    [[nodiscard]] WindowModel* app() const { return scene_ ? &scene_->window() : nullptr; }

    Q_INVOKABLE void begin(bool withDestination) {
        auto next = std::make_unique<WindowScene>();
        next->fill(withDestination ? WindowScene::Destination::chosen : WindowScene::Destination::none);
        next->showLatest();
        // The QML leaves the old model before it goes.
        std::swap(scene_, next);
        Q_EMIT begun();
    }

    Q_INVOKABLE void settle() { scene_->settle(); }

    Q_INVOKABLE [[nodiscard]] int treeRow(const QString& title) { return scene_->treeRow(title); }

    // The next run waits at its beginning until it is let go.
    Q_INVOKABLE void holdRuns() {
        scene_->platform().onAvailableCapacity([this] { scene_->waitForRelease(); });
    }

    Q_INVOKABLE void letGo() { scene_->release(); }

    // The folder of the archive goes, and something else has its name.
    Q_INVOKABLE void replacePlace() {
        std::filesystem::remove_all(scene_->home().at("Documents"));
        scene_->home().write("Documents", "");
    }

    Q_INVOKABLE void losePlace() {
        std::filesystem::remove_all(scene_->home().at("Documents"));
        scene_->model().destinations().refreshFacts();
        scene_->settle();
    }

    // Below the home; its path.
    Q_INVOKABLE [[nodiscard]] QString makeFolders(const QString& base, int count) {
        for (int number = 0; number < count; ++number)
            scene_->home().makeFolder((base + QStringLiteral("/f%1").arg(number)).toStdString());
        return QString::fromStdString(scene_->home().at(base.toStdString()));
    }

  Q_SIGNALS:
    void begun();

  private:
    std::unique_ptr<WindowScene> scene_;
};

class HomeSetup : public QObject {
    Q_OBJECT

  public Q_SLOTS:

    void applicationAvailable() {
        useWindowFonts();
        appearance_.emplace(Appearance::Scheme::light);
    }

    void qmlEngineAvailable(QQmlEngine* engine) {
        engine->addImportPath(QStringLiteral(":/qt/qml"));
        connect(engine, &QQmlEngine::warnings, this, [](const QList<QQmlError>& warnings) {
            for (const QQmlError& warning : warnings)
                QTest::qFail(qPrintable(warning.toString()), __FILE__, __LINE__);
        });
        engine->rootContext()->setContextProperty(QStringLiteral("scenes"), &scenes_);
    }

    void cleanupTestCase() { appearance_.reset(); }

  private:
    std::optional<Appearance> appearance_;
    Scenes scenes_;
};

} // namespace corvane::testing

using corvane::testing::HomeSetup;
QUICK_TEST_MAIN_WITH_SETUP(home, HomeSetup)

#include "home_qml_test.moc"
