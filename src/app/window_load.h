// Makes a window of the program from its QML. Main thread.
#pragma once

#include <QQmlApplicationEngine>
#include <QQuickWindow>
#include <QVariantMap>

namespace corvane {

// `name` is a file of screens/shell. Null when it can't be made; the engine has said why.
QQuickWindow* loadWindow(QQmlApplicationEngine& engine, const QString& name, const QVariantMap& properties);

} // namespace corvane
