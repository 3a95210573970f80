#include "model/mail/space_usage_flow.h"

#include <utility>

namespace corvane {

SpaceUsageFlow::SpaceUsageFlow(ModelContext& context, const AccountDirectory& accounts,
                               const MessageCatalog& catalog, QObject* parent)
  : QObject(parent)
  , context_(context)
  , accounts_(accounts)
  , catalog_(catalog)
  , task_(context.tasks) {
    // A list that has been replaced would be kept until the figures of the next one are wanted.
    connect(&catalog, &MessageCatalog::generationReplaced, this, [this] {
        if (startedWith_ != Inputs()) setStartedWith({});
    });
}

// The earlier ones may be the last that hold a list.
void SpaceUsageFlow::setStartedWith(Inputs inputs) {
    context_.tasks.discard(std::make_shared<Inputs>(std::exchange(startedWith_, std::move(inputs))));
}

SpaceUsageFlow::Inputs SpaceUsageFlow::inputs() const {
    const SharedCatalogState& state = catalog_.state();
    return {state->shown(), state->isAvailabilityKnown ? state->availability->locallyAvailableIDs : nullptr,
            accounts_.availableAccounts()};
}

SharedSpaceUsage SpaceUsageFlow::compute(const Inputs& inputs, const TaskHandle&) {
    return std::make_shared<const std::vector<SpaceAccountUsage>>(
        computeSpaceUsage(*inputs.messages->messages, inputs.locallyAvailableIDs.get(), inputs.accounts));
}

void SpaceUsageFlow::refreshSpaceUsage() {
    isWanted_ = true;
    onInputsChanged();
}

void SpaceUsageFlow::onInputsChanged() {
    if (!isWanted_) return;
    Inputs wanted = inputs();
    if (wanted == startedWith_) return;
    setStartedWith(wanted);
    task_.start(TaskPriority::userInitiated, std::move(wanted), &SpaceUsageFlow::compute,
                [this](SharedSpaceUsage usage) {
                    usage_ = std::move(usage);
                    Q_EMIT spaceUsageChanged();
                });
}

std::int64_t SpaceUsageFlow::spaceUsageLocalTotalBytes() const {
    std::int64_t total = 0;
    for (const SpaceAccountUsage& account : *usage_) total += account.localBytes;
    return total;
}

} // namespace corvane
