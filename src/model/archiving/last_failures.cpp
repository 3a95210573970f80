#include "model/archiving/last_failures.h"

#include <utility>

namespace corvane {

void LastFailures::setFrom(const EmailArchiveRunResult& result) {
    FailureReasons reasons;
    for (const EmailArchiveFailure& failure : result.failures)
        reasons.insert_or_assign(failure.messageFileURL.path(), SharedText(failure.reason));
    SharedTextSet paths;
    for (const auto& [path, reason] : reasons) paths.insert(path);
    paths_ = std::make_shared<const SharedTextSet>(std::move(paths));
    reasons_ = std::make_shared<const FailureReasons>(std::move(reasons));
    Q_EMIT changed();
}

const SharedText* failureReason(const FailureReasons& reasons, const MailMessageRecord& message) {
    if (reasons.empty()) return nullptr;
    const auto reasonOf = [&](const FileURL& url) -> const SharedText* {
        const auto known = reasons.find(url.path());
        return known == reasons.end() ? nullptr : &known->second;
    };
    if (const SharedText* reason = reasonOf(message.fileURL)) return reason;
    if (!message.relatedMessageFileURLs) return nullptr;
    for (const FileURL& url : *message.relatedMessageFileURLs) {
        if (const SharedText* reason = reasonOf(url)) return reason;
    }
    return nullptr;
}

} // namespace corvane
