// What the desktop says of its looks: light or dark, and whether it wants motion. One object a program run,
// made by the entry before any QML is loaded. Main thread.
#pragma once

#include <optional>

#include <QFont>
#include <QObject>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

#include "screens/controls/theme/desktop_looks.h"

class QJSEngine;
class QQmlEngine;

namespace corvane {

class Appearance : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(bool dark READ dark NOTIFY darkChanged)
    Q_PROPERTY(bool reducedMotion READ reducedMotion CONSTANT)
    Q_PROPERTY(qreal hairline READ hairline CONSTANT)

  public:
    enum class Scheme { light, dark };

    // Follows the desktop unless a scheme is forced.
    explicit Appearance(std::optional<Scheme> forced, QObject* parent = nullptr);
    ~Appearance() override;

    // For the QML engine: the one object.
    static Appearance* create(QQmlEngine* qmlEngine, QJSEngine* jsEngine);

    [[nodiscard]] bool dark() const { return dark_; }

    [[nodiscard]] bool reducedMotion() const { return reducedMotion_; }

    // How thick a line is, in device-independent pixels: always as many whole pixels of the screen, also
    // where its scale isn't a whole number.
    [[nodiscard]] static qreal hairline();

    // The window's font with all its families, which a control doesn't take from the application by itself.
    Q_INVOKABLE [[nodiscard]] QFont windowFont(int pixels) const;

    bool eventFilter(QObject* watched, QEvent* event) override;

  Q_SIGNALS:
    void darkChanged();

  private:
    void update();

    std::optional<Scheme> forced_;
    DesktopLooks looks_; // at the start
    bool dark_ = false;
    bool reducedMotion_ = false;
};

} // namespace corvane
