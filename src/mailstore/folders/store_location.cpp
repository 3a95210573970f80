#include "mailstore/folders/store_location.h"

#include <optional>

#include "platform/files/directory.h"
#include "platform/paths.h"
#include "text/charsets/encoding.h"

namespace corvane::mailstore {

std::string latestMailVersionDirectoryName(const std::string& rootPath) {
    std::string newest = "V10";
    std::optional<std::int64_t> newestNumber;
    const auto entries = platform::listDirectory(rootPath, platform::HiddenEntries::skip);
    if (!entries) return newest;
    for (const auto& [name, kind] : *entries) {
        if (kind != platform::EntryKind::directory || !name.starts_with('V')) continue;
        const auto number = text::parseInteger(std::string_view(name).substr(1));
        if (!number || (newestNumber && *number <= *newestNumber)) continue;
        newestNumber = number;
        newest = name;
    }
    return newest;
}

std::string latestMailVersionDirectory(const std::string& rootPath) {
    return platform::joinPath(rootPath, latestMailVersionDirectoryName(rootPath));
}

std::string envelopeIndexPath(const std::string& rootPath) {
    return platform::joinPath(latestMailVersionDirectory(rootPath), "MailData/Envelope Index");
}

bool canReadEnvelopeIndex(const std::string& rootPath) {
    return platform::readFilePrefix(envelopeIndexPath(rootPath), 1).has_value();
}

bool canQueryEnvelopeIndex(const MailStoreContext& context, const std::string& rootPath) {
    return platform::fileExists(envelopeIndexPath(rootPath)) &&
           platform::isExecutableFile(context.platform.sqliteShellPath());
}

} // namespace corvane::mailstore
