#include "mailstore/scan/parse_indexed_message.h"

#include <atomic>
#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "mailstore/scan/attachment_resolution.h"
#include "text/case.h"
#include "text/collation.h"

namespace corvane::mailstore {

namespace {

// Names are one whatever their case and normal form: the disk often has the decomposed one.
std::string placeKey(std::string_view name) {
    return text::canonicallyComposed(text::lowercased(name));
}

// Attachments by name without regard to case, in the order in which the names were first met.
class AttachmentList {
  public:
    void addNamed(std::string_view indexedName) {
        auto named = attachmentFromName(indexedName, {});
        if (!named) return;
        const auto [known, isNew] = places_.try_emplace(placeKey(named->fileName), attachments_.size());
        if (isNew) attachments_.push_back(std::move(*named));
    }

    void addStored(const StoredAttachment& file) {
        auto stored = attachmentFromFile(file);
        if (!stored) return;
        const auto [known, isNew] = places_.try_emplace(placeKey(stored->fileName), attachments_.size());
        if (isNew)
            attachments_.push_back(std::move(*stored));
        else
            attachments_[known->second] = std::move(*stored);
    }

    std::vector<MailAttachmentRecord> take() { return std::move(attachments_); }

  private:
    std::vector<MailAttachmentRecord> attachments_;
    std::unordered_map<std::string, std::size_t> places_;
};

} // namespace

MailMessageRecord parseIndexedMessage(const FileURL& file, const IndexedMessageCandidate& candidate,
                                      const std::vector<StoredAttachment>& storedAttachments,
                                      TextInterner& texts, ScanTimingMetrics& timing) {
    timing.parsedMessages.fetch_add(1, std::memory_order_relaxed);
    AttachmentList attachments;
    for (const std::string& name : candidate.attachmentNames) attachments.addNamed(name);
    for (const StoredAttachment& stored : storedAttachments) attachments.addStored(stored);
    auto list = attachments.take();
    if (list.empty()) timing.noAttachmentMessages.fetch_add(1, std::memory_order_relaxed);
    return recordFromCandidate(candidate, file, std::move(list), texts);
}

} // namespace corvane::mailstore
