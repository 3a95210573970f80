// The JSON forms of what goes to the mail worker and comes from it.
#pragma once

#include <tuple>

#include "records/json/json_form.h"
#include "worker/mail_worker_client.h"

namespace corvane {

template <>
struct JsonForm<MailWorkerClient::Request> {
    using R = MailWorkerClient::Request;
    static constexpr auto fields =
        std::tuple{jsonField("command", &R::command),          jsonField("file_path", &R::filePath),
                   jsonField("message_text", &R::messageText), jsonField("max_bytes", &R::maxBytes),
                   jsonField("file_name", &R::fileName),       jsonField("file_paths", &R::filePaths),
                   jsonField("occurrence", &R::occurrence)};
};

template <>
struct JsonForm<MailWorkerClient::Attachment> {
    using R = MailWorkerClient::Attachment;
    static constexpr auto fields =
        std::tuple{jsonField("file_name", &R::fileName), jsonField("content_type", &R::contentType),
                   jsonField("estimated_size", &R::estimatedSize)};
};

template <>
struct JsonForm<MailWorkerClient::BatchItem> {
    using R = MailWorkerClient::BatchItem;
    static constexpr auto fields = std::tuple{jsonField("path", &R::path), jsonField("text", &R::text)};
};

template <>
struct JsonForm<MailWorkerClient::Response> {
    using R = MailWorkerClient::Response;
    static constexpr auto fields = std::tuple{jsonField("ok", &R::ok),
                                              jsonField("preview", &R::preview),
                                              jsonField("is_html", &R::isHtml),
                                              jsonField("attachments", &R::attachments),
                                              jsonField("attachment_data_base64", &R::attachmentDataBase64),
                                              jsonField("items", &R::items),
                                              jsonField("error", &R::error)};
};

} // namespace corvane
