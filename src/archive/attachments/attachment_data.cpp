#include "archive/attachments/attachment_data.h"

#include <cstdint>

#include "text/charsets/encoding.h"
#include "worker/mail_worker_client.h"

namespace corvane::archive {

namespace {

constexpr std::int64_t maximumAttachmentBytes = 209715200;

} // namespace

std::optional<std::string> attachmentData(const platform::Platform& platform, const AttachmentSource& source,
                                          const std::stop_token& stop) {
    MailWorkerClient::Request request{.command = "attachment_data",
                                      .filePath = source.messageFile,
                                      .maxBytes = maximumAttachmentBytes,
                                      .fileName = source.name};
    if (source.occurrence > 0) request.occurrence = static_cast<std::int64_t>(source.occurrence);
    const MailWorkerClient client(platform);
    const auto answer = client.runRequest(request, client.limits().quickRun, stop);
    return text::base64Decoded(answer.attachmentDataBase64.value_or("-"));
}

} // namespace corvane::archive
