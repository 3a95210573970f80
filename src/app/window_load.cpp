#include "app/window_load.h"

namespace corvane {

QQuickWindow* loadWindow(QQmlApplicationEngine& engine, const QString& name, const QVariantMap& properties) {
    engine.addImportPath(QStringLiteral(":/qt/qml"));
    engine.setInitialProperties(properties);
    engine.load(QUrl(QStringLiteral("qrc:/qt/qml/Corvane/shell/%1.qml").arg(name)));
    const QList<QObject*> roots = engine.rootObjects();
    return roots.isEmpty() ? nullptr : qobject_cast<QQuickWindow*>(roots.first());
}

} // namespace corvane
