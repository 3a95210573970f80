#include "screens/shell/start/blocked_start.h"

#include <utility>

namespace corvane {

BlockedStart::BlockedStart(QString title, QString line)
  : title_(std::move(title))
  , line_(std::move(line)) {}

void BlockedStart::setRetrying(bool retrying) {
    if (retrying == isRetrying_) return;
    isRetrying_ = retrying;
    Q_EMIT retryingChanged();
}

void BlockedStart::retry() {
    if (isRetrying_) return;
    setRetrying(true);
    Q_EMIT retryRequested();
}

} // namespace corvane
