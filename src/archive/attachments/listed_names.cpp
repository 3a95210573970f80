#include "archive/attachments/listed_names.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "mime/attachment_names.h"
#include "worker/mail_worker_client.h"
#include "worker/worker_session.h"

namespace corvane::archive {

namespace {

constexpr std::int64_t bytesForWorker = 8'388'608;

struct Worker {
    explicit Worker(const platform::Platform& platform)
      : client(platform) {
        client.setUpkeep(true);
    }

    std::vector<SharedText> names(const std::string& path, const std::stop_token& stop);

    MailWorkerClient client;
    std::optional<MailWorkerClient::Session> session{};
};

// Such as a logo in the text.
bool isLittlePicture(std::string_view name, const MailWorkerClient::Attachment& attachment) {
    return mime::hasImageExtension(name) &&
           attachment.estimatedSize.value_or(0) < mime::smallestImageAttachmentBytes;
}

std::vector<SharedText> Worker::names(const std::string& path, const std::stop_token& stop) {
    if (!session) session.emplace(client);
    std::vector<SharedText> names;
    for (const auto& each : session->attachments(FileURL(path), bytesForWorker, stop)) {
        const std::string name = mime::cleanAttachmentName(each.fileName);
        if (!name.empty() && !isLittlePicture(name, each)) names.emplace_back(name);
    }
    return names;
}

} // namespace

ListedNames workerListedNames(const platform::Platform& platform) {
    return
        [worker = std::make_shared<Worker>(platform)](
            const std::string& path, const std::stop_token& stop) -> std::optional<std::vector<SharedText>> {
            try {
                return worker->names(path, stop);
            } catch (const WorkerError&) {
                worker->session.reset(); // one that ended by itself would answer nothing more
                return std::nullopt;
            }
        };
}

} // namespace corvane::archive
