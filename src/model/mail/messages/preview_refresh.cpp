#include "model/mail/messages/preview_refresh.h"

#include <exception>
#include <memory>

#include "mime/emlx.h"
#include "mime/preview_layout.h"
#include "mime/preview_text.h"
#include "platform/files/directory.h"
#include "records/texts/preview_placeholders.h"
#include "worker/mail_worker_client.h"

namespace corvane {

namespace {

PreviewRefresh::WorkerPreview previewOfWorker(const platform::Platform& platform) {
    return [client = MailWorkerClient(platform)](const FileURL& file, const std::stop_token& stop) {
        return client.previewText(file, mime::previewByteLimit, stop);
    };
}

std::string textOfWorker(const FileURL& file, const PreviewRefresh::WorkerPreview& worker,
                         const std::stop_token& stop) {
    try {
        return worker(file, stop);
    } catch (const std::exception&) {
        return {};
    }
}

// Made by our own walk through the message.
std::string textOfFile(const FileURL& file) {
    try {
        return mime::previewTextWithoutWorker(file);
    } catch (const mime::MessageFileError&) {
        return {};
    }
}

// Empty when neither the worker nor our own walk gives a sound text.
std::string soundPreview(const FileURL& file, const PreviewRefresh::WorkerPreview& worker,
                         const std::stop_token& stop) {
    std::string text = textOfWorker(file, worker, stop);
    if (!text.empty() && !mime::previewLooksCorrupt(text)) return text;
    text = textOfFile(file);
    const bool isSound = text != emptyBodyPreviewPlaceholder && !mime::previewLooksCorrupt(text);
    return isSound ? text : std::string();
}

struct PreviewJob {
    std::vector<FileURL> files;
    PreviewRefresh::WorkerPreview worker;
};

struct FoundPreview {
    std::string text;     // empty: none of the files gives a sound one
    bool hasFile = false; // one of the files is there
};

// Absent when cancelled.
std::optional<FoundPreview> findPreview(const PreviewJob& job, const TaskHandle& task) {
    FoundPreview found;
    for (const FileURL& file : job.files) {
        if (task.isCancelled()) return std::nullopt;
        if (!platform::fileExists(file.path().str())) continue;
        found.hasFile = true;
        found.text = soundPreview(file, job.worker, task.stopToken());
        if (!found.text.empty()) break;
    }
    return found;
}

} // namespace

PreviewRefresh::PreviewRefresh(ModelContext& context, MessageCatalog& catalog, QObject* parent,
                               WorkerPreview workerPreview)
  : QObject(parent)
  , context_(context)
  , catalog_(catalog)
  , workerPreview_(workerPreview ? std::move(workerPreview) : previewOfWorker(context.platform))
  , previewRefreshTask_(context.tasks) {}

void PreviewRefresh::refreshPreviewIfNeeded(const std::optional<std::string>& messageID) {
    if (!areShown_ || !messageID || refreshingPreviewMessageID_ == messageID) return;
    const MailMessageRecord* message = catalog_.messageByID(*messageID);
    if (message == nullptr || !mime::previewLooksCorrupt(message->preview)) return;
    refreshingPreviewMessageID_ = messageID;
    previewRefreshTask_.start(TaskPriority::utility,
                              PreviewJob{message->allMessageFileURLs(), workerPreview_}, &findPreview,
                              [this, id = *messageID,
                               generation = std::weak_ptr(catalog_.state()->set)](const FoundPreview& found) {
                                  refreshingPreviewMessageID_.reset();
                                  if (generation.lock() != catalog_.state()->set) return;
                                  if (found.text.empty()) {
                                      Q_EMIT nothingFound(QString::fromStdString(id), found.hasFile);
                                  } else {
                                      catalog_.replacePreview(id, found.text);
                                  }
                              });
}

void PreviewRefresh::cancel() {
    previewRefreshTask_.cancel();
    refreshingPreviewMessageID_.reset();
}

} // namespace corvane
