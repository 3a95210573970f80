// Paints one QML file over the window's module into a PNG, for people to look at:
//   qml_picture FILE.qml OUT.png [light|dark] [WIDTH HEIGHT]
#include <cstdio>

#include <QGuiApplication>
#include <QQmlEngine>
#include <QQuickView>
#include <QTimer>

#include "screens/controls/theme/appearance.h"
#include "screens/controls/theme/fonts.h"

int main(int argc, char** argv) {
    corvane::thinTextStems();
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 3) {
        std::fputs("qml_picture FILE.qml OUT.png [light|dark] [WIDTH HEIGHT]\n", stderr);
        return 2;
    }
    corvane::useWindowFonts();
    const bool dark = arguments.value(3) == QLatin1String("dark");
    const corvane::Appearance appearance(dark ? corvane::Appearance::Scheme::dark
                                              : corvane::Appearance::Scheme::light);
    QQuickView view;
    view.engine()->addImportPath(QStringLiteral(":/qt/qml"));
    view.setResizeMode(QQuickView::SizeRootObjectToView);
    view.setSource(QUrl::fromLocalFile(arguments[1]));
    if (view.status() != QQuickView::Ready) return 1;
    view.resize(arguments.size() >= 6 ? QSize(arguments[4].toInt(), arguments[5].toInt())
                                      : view.initialSize());
    view.show();
    bool saved = false;
    // The second frame: layouts have settled by then.
    int frames = 0;
    QObject::connect(
        &view, &QQuickWindow::frameSwapped, &view,
        [&] {
            if (++frames < 2) return view.update();
            saved = view.grabWindow().save(arguments[2]);
            QCoreApplication::quit();
        },
        Qt::QueuedConnection);
    QGuiApplication::exec();
    return saved ? 0 : 1;
}
