#include "archive/bodies/archived_attachment.h"

#include "archive/bodies/body_indexing.h"
#include "text/charsets/encoding.h"
#include "worker/mail_worker_client.h"

namespace corvane {

namespace {

constexpr std::int64_t maximumAttachmentBytes = 209715200;

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

ExtractionError::ExtractionError(Kind kind, const std::string& name)
  : std::runtime_error(describe(kind, name))
  , kind_(kind) {}

std::string archivedAttachmentData(const platform::Platform& platform, const ArchivedEntry& entry,
                                   const std::string& name, const std::stop_token& stop) {
    const auto items = bodyIndexItems(entry.locationRootPath.str(), {entry.record});
    if (items.empty()) throw ExtractionError(ExtractionError::Kind::missing);
    const std::string path = items.front().fileURL.path().str();
    if (platform.isCloudPlaceholder(path)) throw ExtractionError(ExtractionError::Kind::unavailable);
    const MailWorkerClient client(platform);
    const auto answer = client.runRequest({.command = "attachment_data",
                                           .filePath = path,
                                           .maxBytes = maximumAttachmentBytes,
                                           .fileName = name},
                                          client.limits().quickRun, stop);
    auto data = text::base64Decoded(answer.attachmentDataBase64.value_or("-"));
    if (!data) throw ExtractionError(ExtractionError::Kind::missingAttachment, name);
    return std::move(*data);
}

} // namespace corvane
