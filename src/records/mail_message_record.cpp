#include "records/mail_message_record.h"

#include <random>
#include <unordered_set>

#include <fmt/format.h>

#include "platform/directory.h"
#include "records/formatters.h"
#include "records/timestamps.h"

namespace corvane {

Uuid Uuid::random() {
    static thread_local std::mt19937_64 generator = [] {
        std::random_device device;
        std::seed_seq seed{device(), device(), device(), device()};
        return std::mt19937_64(seed);
    }();
    Uuid uuid{generator(), generator()};
    uuid.high = (uuid.high & ~0xF000ULL) | 0x4000ULL;
    uuid.low = (uuid.low & ~(0x3ULL << 62)) | (0x2ULL << 62);
    return uuid;
}

std::optional<Uuid> Uuid::parse(std::string_view text) {
    if (text.size() != 36) return std::nullopt;
    Uuid uuid;
    unsigned digits = 0;
    for (std::size_t index = 0; index < text.size(); ++index) {
        const char character = text[index];
        if (index == 8 || index == 13 || index == 18 || index == 23) {
            if (character != '-') return std::nullopt;
            continue;
        }
        unsigned value = 0;
        if (character >= '0' && character <= '9')
            value = static_cast<unsigned>(character - '0');
        else if (character >= 'A' && character <= 'F')
            value = static_cast<unsigned>(character - 'A' + 10);
        else if (character >= 'a' && character <= 'f')
            value = static_cast<unsigned>(character - 'a' + 10);
        else
            return std::nullopt;
        std::uint64_t& half = digits++ < 16 ? uuid.high : uuid.low;
        half = half << 4 | value;
    }
    return uuid;
}

std::string Uuid::text() const {
    return fmt::format("{:08X}-{:04X}-{:04X}-{:04X}-{:012X}", high >> 32, high >> 16 & 0xFFFF, high & 0xFFFF,
                       low >> 48, low & 0xFFFFFFFFFFFFULL);
}

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
    return date ? formatListDate(*date) : "日期未知";
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
