#include "records/mail_message_record.h"

#include <string_view>
#include <unordered_set>

#include <fmt/format.h>

#include "platform/files/directory.h"
#include "records/texts/formatters.h"
#include "records/timestamps.h"

namespace corvane {

std::string MailAttachmentRecord::displaySize() const {
    return estimatedSize ? formatByteCount(*estimatedSize) : "大小待估算";
}

std::vector<FileURL> MailMessageRecord::allMessageFileURLs() const {
    std::vector<FileURL> urls{fileURL};
    if (!relatedMessageFileURLs) return urls;
    std::unordered_set<std::string_view> seen{fileURL.path().view()};
    for (const FileURL& url : *relatedMessageFileURLs) {
        if (seen.insert(url.path().view()).second) urls.push_back(url);
    }
    return urls;
}

bool MailMessageRecord::isLocallyAvailable() const {
    if (platform::fileExists(fileURL.path().str())) return true;
    if (!relatedMessageFileURLs) return false;
    for (const FileURL& url : *relatedMessageFileURLs) {
        if (platform::fileExists(url.path().str())) return true;
    }
    return false;
}

std::size_t MailMessageRecord::duplicateMessageFileCount() const {
    return relatedMessageFileURLs ? allMessageFileURLs().size() : 1;
}

std::string MailMessageRecord::formattedDate() const {
    return formatMailDate(date);
}

std::string MailMessageRecord::ageText() const {
    return date ? fmt::format("{} 年", localYear(*date)) : "未知时间";
}

MailMessageRecord MailMessageRecord::replacingPreview(SharedText replacement) const {
    MailMessageRecord copy = *this;
    copy.preview = std::move(replacement);
    return copy;
}

MailMessageRecord
MailMessageRecord::replacingRelatedMessageFileURLs(std::optional<std::vector<FileURL>> replacement) const {
    MailMessageRecord copy = *this;
    copy.relatedMessageFileURLs = std::move(replacement);
    return copy;
}

} // namespace corvane
