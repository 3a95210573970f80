#include "screens/shell/window_lengths.h"

#include <optional>
#include <string>

namespace corvane {

namespace {

std::string lengthKey(const QString& name) {
    return "corvaneLength." + name.toStdString();
}

} // namespace

qreal WindowLengths::stored(const QString& name, qreal fallback, qreal minimum, qreal maximum) const {
    const std::optional<std::string> text = settings_.text(lengthKey(name));
    if (!text) return fallback;
    bool isNumber = false;
    const qreal length = QString::fromStdString(*text).toDouble(&isNumber);
    return isNumber && length >= minimum && length <= maximum ? length : fallback;
}

void WindowLengths::store(const QString& name, qreal length) {
    settings_.setText(lengthKey(name), QString::number(length, 'f', 0).toStdString());
}

} // namespace corvane
