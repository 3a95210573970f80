// A run that goes on without its sheet, and how it ended until somebody looks at that: nobody's work is
// covered, nor their keyboard taken. Main thread.
#pragma once

#include <optional>

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace corvane {

class BackgroundRun : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("part of the archive sheet")
    Q_PROPERTY(QString endText READ endText NOTIFY changed)
    Q_PROPERTY(QString endTone READ endTone NOTIFY changed)

  public:
    struct End {
        QString text;
        QString tone; // as controls have them
    };

    using QObject::QObject;

    // The sheet of the run, or of the confirmation that its failure led back to, stands behind the other
    // screens.
    [[nodiscard]] bool isBehind() const { return isBehind_; }

    // Of a run that ended behind, until somebody looks at it or the next one starts; else empty.
    [[nodiscard]] QString endText() const { return end_ ? end_->text : QString(); }

    [[nodiscard]] QString endTone() const { return end_ ? end_->tone : QString(); }

    // A run starts, in front.
    void begin();

    // The run is over. One that was behind stays there, and tells its end; of one in front its sheet tells.
    void finish(End end);

    void comeToFront();

    // Nobody will ask how it ended any more.
    void forgetEnd();

    // The run goes on without its sheet; `bringToFront` shows it again. No effect without a run.
    Q_INVOKABLE void send();
    Q_INVOKABLE void bringToFront();

    // Shows what `endText` is about.
    Q_INVOKABLE void showEnd();

  Q_SIGNALS:
    void changed();
    // What is known of the end is wanted in front.
    void endWanted();

  private:
    bool isRunning_ = false;
    bool isBehind_ = false;
    std::optional<End> end_;
};

} // namespace corvane
