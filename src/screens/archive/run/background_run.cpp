#include "screens/archive/run/background_run.h"

#include <utility>

namespace corvane {

void BackgroundRun::begin() {
    isRunning_ = true;
    isBehind_ = false;
    end_.reset();
    Q_EMIT changed();
}

void BackgroundRun::finish(End end) {
    isRunning_ = false;
    if (isBehind_) end_ = std::move(end);
    Q_EMIT changed();
}

void BackgroundRun::comeToFront() {
    if (!std::exchange(isBehind_, false)) return;
    Q_EMIT changed();
}

void BackgroundRun::forgetEnd() {
    if (!std::exchange(end_, std::nullopt)) return;
    Q_EMIT changed();
}

void BackgroundRun::send() {
    if (!isRunning_ || std::exchange(isBehind_, true)) return;
    Q_EMIT changed();
}

void BackgroundRun::bringToFront() {
    if (isRunning_) comeToFront();
}

void BackgroundRun::showEnd() {
    if (!end_) return;
    Q_EMIT endWanted();
    forgetEnd();
}

} // namespace corvane
