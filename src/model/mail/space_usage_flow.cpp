#include "model/mail/space_usage_flow.h"

#include <utility>

namespace corvane {

SpaceUsageFlow::SpaceUsageFlow(ModelContext& context, const AccountDirectory& accounts,
                               const MessageCatalog& catalog, QObject* parent)
  : QObject(parent)
  , accounts_(accounts)
  , catalog_(catalog)
  , task_(context.tasks) {}

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
    startedWith_ = wanted;
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
