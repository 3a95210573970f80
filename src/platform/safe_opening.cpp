#include "platform/safe_opening.h"

#include "platform/files/document_file.h"

namespace corvane::platform {

Opening openOrShow(const Platform& platform, const std::string& path) {
    if (!isDocumentFile(path)) return platform.reveal(path) ? Opening::shownInFolder : Opening::refused;
    return platform.open(path) ? Opening::opened : Opening::refused;
}

} // namespace corvane::platform
