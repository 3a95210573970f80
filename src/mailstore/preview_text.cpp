#include "mailstore/preview_text.h"

#include <algorithm>

#include "mailstore/emlx.h"
#include "mailstore/mime_walk.h"
#include "mailstore/preview_layout.h"
#include "records/preview_placeholders.h"
#include "text/graphemes.h"

namespace corvane::mailstore {

std::string previewText(const MailWorkerClient& worker, const FileURL& file) {
    try {
        std::string preview = worker.previewText(file, previewByteLimit);
        if (!previewLooksCorrupt(preview)) return preview;
    } catch (const WorkerError&) { // NOLINT(bugprone-empty-catch): our own walk follows
    }
    return previewText(decodeEmlx(readMessagePrefix(file.path().str(), previewByteLimit)));
}

std::string previewText(std::string_view messageText) {
    const auto candidates = previewCandidates(messageText, 0);
    auto chosen = std::ranges::find(candidates, false, &PreviewCandidate::isHTML);
    if (chosen == candidates.end()) chosen = candidates.begin();
    const std::string text = chosen == candidates.end() ? std::string() : plainPreviewText(chosen->body);
    if (text.empty()) return std::string(emptyBodyPreviewPlaceholder);
    return std::string(text::graphemePrefix(text, previewCharacters));
}

} // namespace corvane::mailstore
