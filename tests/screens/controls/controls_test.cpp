// Runs the tst_*.qml files of this folder over the window's module, in the light colours. Whatever the engine
// warns of fails the test in which it happens.
#include <QQmlContext>
#include <QQmlEngine>
#include <QtQuickTest>

#include "screens/controls/theme/appearance.h"
#include "screens/controls/theme/fonts.h"

class ControlsSetup : public QObject {
    Q_OBJECT

  public Q_SLOTS:

    void applicationAvailable() {
        corvane::useWindowFonts();
        appearance_.emplace(corvane::Appearance::Scheme::light);
    }

    void qmlEngineAvailable(QQmlEngine* engine) {
        engine->addImportPath(QStringLiteral(":/qt/qml"));
        connect(engine, &QQmlEngine::warnings, this, [](const QList<QQmlError>& warnings) {
            for (const QQmlError& warning : warnings)
                QTest::qFail(qPrintable(warning.toString()), __FILE__, __LINE__);
        });
    }

  private:
    std::optional<corvane::Appearance> appearance_;
};

QUICK_TEST_MAIN_WITH_SETUP(controls, ControlsSetup)

#include "controls_test.moc"
