// Made-up mail for a computer without Apple Mail: offered to a newcomer, made by a script in the background,
// and then opened in place of the empty home. Main thread; the disk is touched by background tasks only.
#pragma once

#include <string>
#include <vector>

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include "model/model_context.h"
#include "model/tasks/task_slot.h"

namespace corvane {

class SampleStore : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the window")
    // There is no Mail in this home, and samples can be made.
    Q_PROPERTY(bool offered READ offered NOTIFY changed)
    Q_PROPERTY(bool busy READ busy NOTIFY changed)
    // Why the last try failed, for the user.
    Q_PROPERTY(QString failure READ failure NOTIFY changed)
    // The home that is open is the one with the samples.
    Q_PROPERTY(bool open READ open CONSTANT)

  public:
    // `makers` are the places to look for the script, in order. Looks at once whether to offer it.
    SampleStore(ModelContext& context, std::vector<std::string> makers, QObject* parent = nullptr);

    [[nodiscard]] bool offered() const { return !maker_.empty(); }

    [[nodiscard]] bool busy() const { return busy_; }

    [[nodiscard]] const QString& failure() const { return failure_; }

    [[nodiscard]] bool open() const;

    // Makes the samples unless they are there from an earlier time; `ready` or a failure follows.
    Q_INVOKABLE void make();

  Q_SIGNALS:
    void changed();
    // The samples are in this home.
    void ready(const QString& home);

  private:
    [[nodiscard]] std::string sampleHome() const;
    void look(std::vector<std::string> makers);

    ModelContext& context_;
    std::string maker_;
    QString failure_;
    bool busy_ = false;
    TaskSlot task_;
};

} // namespace corvane
