#include "archive/attachments/archived_attachment_extractor.h"

#include "archive/attachments/attachment_data.h"
#include "platform/paths.h"

namespace corvane {

namespace {

using ExtractionError = ArchivedAttachmentExtractor::ExtractionError;

std::string describe(ExtractionError::Kind kind, const std::string& name) {
    switch (kind) {
    case ExtractionError::Kind::missingAttachment:
        return "没有在归档邮件中找到 " + name;
    case ExtractionError::Kind::unavailable:
        return "归档邮件尚不可读取";
    case ExtractionError::Kind::missing:
        break;
    }
    return "这封归档邮件的文件已找不到了(可能被删除或移动)。可在「⋯」菜单选「从归档库移除」清掉这条记录。";
}

} // namespace

ArchivedAttachmentExtractor::ExtractionError::ExtractionError(Kind kind, const std::string& name)
  : std::runtime_error(describe(kind, name))
  , kind_(kind) {}

std::string ArchivedAttachmentExtractor::data(const AttachmentRef& attachment,
                                              const std::stop_token& stop) const {
    auto data = archive::attachmentData(
        platform_, {ensureLocal(attachment.entry, stop), attachment.name, attachment.occurrence}, stop);
    if (!data) throw ExtractionError(ExtractionError::Kind::missingAttachment, attachment.name);
    return std::move(*data);
}

std::string ArchivedAttachmentExtractor::preparedAttachment(const AttachmentRef& attachment,
                                                            const std::stop_token& stop) const {
    const ArchivedEntry& entry = attachment.entry;
    const archive::AttachmentCache::Key key{
        .mailPath = platform::joinPath(entry.locationRootPath.str(), entry.record.emlRelativePath.str()),
        .name = attachment.name,
        .occurrence = attachment.occurrence};
    if (auto path = cache_->find(key)) return std::move(*path);
    return cache_->put(key, data(attachment, stop));
}

std::string ArchivedAttachmentExtractor::ensureLocal(const ArchivedEntry& entry,
                                                     const std::stop_token& stop) const {
    using OpenError = ArchivedCloudFileOpener::OpenError;
    try {
        return ArchivedCloudFileOpener(platform_, limits_).ensureLocal(entry, stop);
    } catch (const OpenError& error) {
        const bool isMissing = error.kind() == OpenError::Kind::missing;
        throw ExtractionError(isMissing ? ExtractionError::Kind::missing
                                        : ExtractionError::Kind::unavailable);
    }
}

} // namespace corvane
