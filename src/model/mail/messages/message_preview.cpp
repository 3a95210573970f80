#include "model/mail/messages/message_preview.h"

#include <stdexcept>

#include "mailstore/scan/worker_preview.h"
#include "mime/emlx.h"
#include "platform/paths.h"

namespace corvane {

std::string messagePreview(const platform::Platform& platform, const std::string& path) {
    try {
        return mailstore::previewText(MailWorkerClient(platform), FileURL(platform::standardizedPath(path)));
    } catch (const mime::MessageFileError& error) {
        throw std::runtime_error(std::string("读取邮件文件失败：") + error.what());
    }
}

} // namespace corvane
