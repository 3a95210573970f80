// The archive run that is under way, as the sheet and the sidebar show it. Main thread. Elapsed and left time
// move once a second, also between the run's reports.
#pragma once

#include <algorithm>
#include <cstdint>

#include <QObject>
#include <QTimer>
#include <QtQml/qqmlregistration.h>

#include "model/archiving/archive_run_flow.h"
#include "screens/archive/run/run_pace.h"

namespace corvane {

class ArchiveProgress : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("part of the archive sheet")
    Q_PROPERTY(qreal fraction READ fraction NOTIFY changed)
    Q_PROPERTY(QString completedText READ completedText NOTIFY changed)
    Q_PROPERTY(QString totalText READ totalText NOTIFY changed)
    Q_PROPERTY(QString percentText READ percentText NOTIFY changed)
    Q_PROPERTY(QString statusText READ statusText NOTIFY changed)
    Q_PROPERTY(QString rateText READ rateText NOTIFY changed)
    Q_PROPERTY(QString timeLeftText READ timeLeftText NOTIFY changed)
    Q_PROPERTY(QString elapsedText READ elapsedText NOTIFY changed)
    Q_PROPERTY(bool isCancelling READ isCancelling NOTIFY changed)

  public:
    explicit ArchiveProgress(ArchiveRunFlow& archive, QObject* parent = nullptr);

    void start(std::int64_t total);
    void setCancelling();
    void stop();

    [[nodiscard]] std::int64_t completed() const { return progress_.completed; }

    [[nodiscard]] std::int64_t total() const { return progress_.total; }

    [[nodiscard]] qreal fraction() const { return std::clamp(progress_.fraction(), 0.0, 1.0); }

    [[nodiscard]] QString completedText() const;
    [[nodiscard]] QString totalText() const;
    [[nodiscard]] QString percentText() const;
    [[nodiscard]] QString statusText() const;
    [[nodiscard]] QString rateText() const;
    [[nodiscard]] QString timeLeftText() const;
    [[nodiscard]] QString elapsedText() const;

    [[nodiscard]] bool isCancelling() const { return isCancelling_; }

  Q_SIGNALS:
    void changed();

  private:
    void handleProgress();

    ArchiveRunFlow& archive_;
    EmailArchiveProgress progress_;
    RunPace pace_;
    bool isCancelling_ = false;
    QTimer tick_;
};

} // namespace corvane
