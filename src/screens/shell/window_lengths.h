// The lengths that the user has set in the window, such as a pane's width, kept in the settings. Main thread.
#pragma once

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

#include "platform/settings_store.h"

namespace corvane {

class WindowLengths : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the window")

  public:
    // `settings` must outlive it.
    explicit WindowLengths(platform::SettingsStore& settings, QObject* parent = nullptr)
      : QObject(parent)
      , settings_(settings) {}

    // `fallback` where there is none, or none between the limits.
    Q_INVOKABLE [[nodiscard]] qreal stored(const QString& name, qreal fallback, qreal minimum,
                                           qreal maximum) const;
    Q_INVOKABLE void store(const QString& name, qreal length);

  private:
    platform::SettingsStore& settings_;
};

} // namespace corvane
