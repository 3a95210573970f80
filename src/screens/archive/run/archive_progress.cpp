#include "screens/archive/run/archive_progress.h"

#include <chrono>
#include <cmath>
#include <optional>

#include "records/texts/progress_texts.h"
#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

RunPace::Moment now() {
    return std::chrono::steady_clock::now();
}

} // namespace

ArchiveProgress::ArchiveProgress(ArchiveRunFlow& archive, QObject* parent)
  : QObject(parent)
  , archive_(archive) {
    tick_.setInterval(std::chrono::seconds(1));
    connect(&tick_, &QTimer::timeout, this, &ArchiveProgress::changed);
    connect(&archive, &ArchiveRunFlow::progressChanged, this, &ArchiveProgress::handleProgress);
}

void ArchiveProgress::start(std::int64_t total) {
    progress_ = {0, total, std::nullopt, preparingText(total)};
    isCancelling_ = false;
    pace_.start(now());
    tick_.start();
    Q_EMIT changed();
}

void ArchiveProgress::setCancelling() {
    isCancelling_ = true;
    Q_EMIT changed();
}

void ArchiveProgress::stop() {
    tick_.stop();
}

void ArchiveProgress::handleProgress() {
    const auto& report = archive_.emailArchiveProgress();
    if (!report || !tick_.isActive()) return;
    progress_ = *report;
    pace_.report(progress_.completed, now());
    Q_EMIT changed();
}

QString ArchiveProgress::completedText() const {
    return screens::shownCount(progress_.completed);
}

QString ArchiveProgress::totalText() const {
    return screens::shownMessageCount(progress_.total);
}

QString ArchiveProgress::percentText() const {
    return QStringLiteral("%1%").arg(static_cast<int>(std::floor(fraction() * 100)));
}

QString ArchiveProgress::statusText() const {
    return screens::shownLine(progress_.statusText);
}

QString ArchiveProgress::rateText() const {
    return screens::shownRate(pace_.rate());
}

QString ArchiveProgress::timeLeftText() const {
    return screens::shownTimeLeft(pace_.timeLeft(progress_.total, now()));
}

QString ArchiveProgress::elapsedText() const {
    return screens::shownDuration(pace_.elapsed(now()).count());
}

} // namespace corvane
