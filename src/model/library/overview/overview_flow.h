// Keeps the overview of archived mail up to date from the moment that somebody wants it. Main thread; it is
// made in the background, and the earlier one stays until the new one is there.
#pragma once

#include <functional>
#include <optional>

#include <QObject>

#include "model/library/overview/overview_state.h"
#include "model/model_context.h"
#include "model/tasks/task_slot.h"

namespace corvane {

class OverviewFlow : public QObject {
    Q_OBJECT

  public:
    using InputsProvider = std::function<OverviewInputs()>;

    // `inputs` is asked on the main thread, and gives what is known now.
    OverviewFlow(ModelContext& context, InputsProvider inputs, QObject* parent = nullptr);

    // Null before the first one.
    [[nodiscard]] const SharedOverview& overview() const { return overview_; }

    // The overview is of what is known now.
    [[nodiscard]] bool isCurrent() const { return overview_ && overview_->inputs == inputs_(); }

    // Makes the overview where it isn't current; from here on every change of its inputs makes another.
    void refreshArchivedOverviewStats();

    // The inputs may have changed. No effect as long as nobody wants an overview.
    void onInputsChanged();

  Q_SIGNALS:
    void overviewChanged();

  private:
    void publish(SharedOverview overview);

    ModelContext& context_;
    InputsProvider inputs_;
    SharedOverview overview_;
    bool isWanted_ = false;
    std::optional<OverviewInputs> making_; // of the overview that is being made
    TaskSlot task_;
};

} // namespace corvane
