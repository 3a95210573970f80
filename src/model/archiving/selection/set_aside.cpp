#include "model/archiving/selection/set_aside.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "records/archived/stable_id.h"
#include "records/stores/settings_keys.h"

namespace corvane {

SetAside::SetAside(ModelContext& context, QObject* parent)
  : QObject(parent)
  , context_(context) {
    const auto kept = context.settings.textList(setAsideMessagesKey).value_or(std::vector<std::string>());
    stableIDs_ = std::make_shared<const SharedTextSet>(kept.begin(), kept.end());
}

void SetAside::set(const MessageList& messages, bool isSetAside) {
    SharedTextSet ids = *stableIDs_;
    for (const MailMessageRecord& message : messages) {
        if (isSetAside)
            ids.insert(stableID(message));
        else
            ids.erase(SharedText(stableID(message)));
    }
    if (ids == *stableIDs_) return;
    std::vector<std::string> kept;
    for (const SharedText& id : ids) kept.push_back(id.str());
    std::ranges::sort(kept);
    context_.settings.setTextList(setAsideMessagesKey, kept);
    stableIDs_ = std::make_shared<const SharedTextSet>(std::move(ids));
    Q_EMIT changed();
}

} // namespace corvane
