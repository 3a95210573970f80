#include "archive/attachments/listed_names.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

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

    MailWorkerClient client;
    std::optional<MailWorkerClient::Session> session{};
};

// Such as a logo in the text.
bool isLittlePicture(std::string_view name, const MailWorkerClient::Attachment& attachment) {
    return mime::hasImageExtension(name) &&
           attachment.estimatedSize.value_or(0) < mime::smallestImageAttachmentBytes;
}

} // namespace

ListedNames workerListedNames(const platform::Platform& platform) {
    return
        [worker = std::make_shared<Worker>(platform)](const std::string& path, const std::stop_token& stop) {
            std::vector<SharedText> names;
            try {
                if (!worker->session) worker->session.emplace(worker->client);
                for (const auto& each : worker->session->attachments(FileURL(path), bytesForWorker, stop)) {
                    const std::string name = mime::cleanAttachmentName(each.fileName);
                    if (!name.empty() && !isLittlePicture(name, each)) names.emplace_back(name);
                }
            } catch (const WorkerError&) { // NOLINT(bugprone-empty-catch): the mail is there without them
            }
            return names;
        };
}

} // namespace corvane::archive
