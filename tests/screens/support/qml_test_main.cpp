// Runs the tst_*.qml files of the folder that `-input` names, in the light colours. What they ask for besides
// the window's module is in `scenes`. Whatever the engine warns of fails the test in which it happens.
#include <QQmlContext>
#include <QQmlEngine>
#include <QtQuickTest>

#include "screens/controls/theme/appearance.h"
#include "screens/controls/theme/fonts.h"
#include "screens/support/qml_scenes.h"

namespace corvane::testing {

class QmlSetup : public QObject {
    Q_OBJECT

  public Q_SLOTS:

    void applicationAvailable() {
        useWindowFonts();
        appearance_.emplace(Appearance::Scheme::light);
        scenes_.emplace();
    }

    void qmlEngineAvailable(QQmlEngine* engine) {
        engine->addImportPath(QStringLiteral(":/qt/qml"));
        connect(engine, &QQmlEngine::warnings, this, [](const QList<QQmlError>& warnings) {
            for (const QQmlError& warning : warnings)
                QTest::qFail(qPrintable(warning.toString()), __FILE__, __LINE__);
        });
        engine->rootContext()->setContextProperty(QStringLiteral("scenes"), &*scenes_);
    }

    void cleanupTestCase() {
        scenes_.reset();
        appearance_.reset();
    }

  private:
    std::optional<Appearance> appearance_;
    std::optional<QmlScenes> scenes_;
};

} // namespace corvane::testing

using corvane::testing::QmlSetup;
QUICK_TEST_MAIN_WITH_SETUP(screens, QmlSetup)

#include "qml_test_main.moc"
