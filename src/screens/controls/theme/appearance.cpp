#include "screens/controls/theme/appearance.h"

#include <algorithm>
#include <cmath>

#include <QEvent>
#include <QGuiApplication>
#include <QJSEngine>
#include <QPalette>
#include <QStandardPaths>

namespace corvane {

namespace {

Appearance* theAppearance = nullptr;

// The palette is what every platform theme sets, also those that know no colour schemes.
bool paletteIsDark() {
    const QPalette palette = QGuiApplication::palette();
    return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

} // namespace

Appearance::Appearance(std::optional<Scheme> forced, QObject* parent)
  : QObject(parent)
  , forced_(forced)
  , looks_(DesktopLooks::of(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)))
  , reducedMotion_(qEnvironmentVariableIsSet("CORVANE_REDUCED_MOTION") || looks_.animates == false) {
    theAppearance = this;
    qGuiApp->installEventFilter(this);
    update();
}

Appearance::~Appearance() {
    theAppearance = nullptr;
}

Appearance* Appearance::create(QQmlEngine* /*qmlEngine*/, QJSEngine* /*jsEngine*/) {
    // The entry owns it, not the engine.
    if (theAppearance == nullptr) new Appearance(std::nullopt, qGuiApp);
    QJSEngine::setObjectOwnership(theAppearance, QJSEngine::CppOwnership);
    return theAppearance;
}

QFont Appearance::windowFont(int pixels) const {
    QFont font = QGuiApplication::font();
    font.setFamilies(font.families());
    font.setPixelSize(pixels);
    return font;
}

bool Appearance::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ApplicationPaletteChange) update();
    return QObject::eventFilter(watched, event);
}

void Appearance::update() {
    const bool dark = forced_ ? *forced_ == Scheme::dark : paletteIsDark() || looks_.isDark == true;
    if (dark == dark_) return;
    dark_ = dark;
    Q_EMIT darkChanged();
}

qreal Appearance::hairline() {
    const qreal scale = qGuiApp == nullptr ? 1 : qGuiApp->devicePixelRatio();
    return std::max(1.0, std::floor(scale)) / scale;
}

} // namespace corvane
