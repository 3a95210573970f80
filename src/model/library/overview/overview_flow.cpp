#include "model/library/overview/overview_flow.h"

#include <utility>

namespace corvane {

namespace {

struct OverviewJob {
    OverviewInputs inputs;
    SharedOverview earlier; // null for the first one
};

SharedOverview makeOverview(OverviewJob job, const TaskHandle& task) {
    return ArchivedOverview::make(std::move(job.inputs), job.earlier, task.stopToken());
}

} // namespace

OverviewFlow::OverviewFlow(ModelContext& context, InputsProvider inputs, QObject* parent)
  : QObject(parent)
  , context_(context)
  , inputs_(std::move(inputs))
  , task_(context.tasks) {}

void OverviewFlow::refreshArchivedOverviewStats() {
    isWanted_ = true;
    onInputsChanged();
}

void OverviewFlow::onInputsChanged() {
    if (!isWanted_) return;
    OverviewInputs inputs = inputs_();
    if (making_ == inputs) return;
    making_.reset();
    task_.cancel();
    if (overview_ && overview_->inputs == inputs) return;
    making_ = inputs;
    task_.start(TaskPriority::userInitiated, OverviewJob{std::move(inputs), overview_}, &makeOverview,
                [this](SharedOverview overview) { publish(std::move(overview)); });
}

void OverviewFlow::publish(SharedOverview overview) {
    making_.reset();
    overview_.swap(overview);
    context_.tasks.discard(std::move(overview));
    Q_EMIT overviewChanged();
}

} // namespace corvane
