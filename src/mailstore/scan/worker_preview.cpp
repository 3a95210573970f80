#include "mailstore/scan/worker_preview.h"

#include "mime/preview_layout.h"
#include "mime/preview_text.h"

namespace corvane::mailstore {

std::string previewText(const MailWorkerClient& worker, const FileURL& file) {
    try {
        std::string preview = worker.previewText(file, mime::previewByteLimit);
        if (!mime::previewLooksCorrupt(preview)) return preview;
    } catch (const WorkerError&) { // NOLINT(bugprone-empty-catch): our own walk follows
    }
    return mime::previewTextWithoutWorker(file);
}

} // namespace corvane::mailstore
