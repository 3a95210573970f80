// Cutting messages out of files, grouping copies, and naming by what a message says.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "archive/archive_naming.h"
#include "archive/message_extraction.h"
#include "fuzz_kit.h"
#include "platform/paths.h"
#include "text/charsets/charset.h"

using namespace corvane;
using fuzz::require;

namespace {

void checkGroups(std::string_view file) {
    std::vector<archive::MessageBytes> copies;
    const std::string_view half = file.substr(0, file.size() / 2);
    for (const std::string_view part : {file, half, file}) {
        auto message = archive::MessageBytes::fromEmlx(std::string(part));
        if (!message) continue;
        require(archive::bodyStartIndex(message->bytes) <= message->bytes.size());
        require(message->bytes.ends_with(message->body()));
        copies.push_back(std::move(*message));
    }
    const std::vector<archive::BodyGroup> groups = archive::groupByBody(copies);
    require(groups.size() <= 2);
    for (const archive::BodyGroup& group : groups) {
        for (const std::size_t copy : group.copies)
            require(copies[copy].body() == copies[group.largest].body());
    }
}

void checkName(std::string_view text) {
    MailMessageRecord message;
    message.subject = text;
    message.accountName = SharedText(text.substr(text.size() / 2));
    archive::ArchivePaths paths;
    const std::string first = paths.uniqueRelativePath(message, "（变体1）");
    const std::string second = paths.uniqueRelativePath(message, "（变体1）");
    require(first != second);
    for (const std::string& path : {first, second}) {
        require(platform::isSafeRelativePath(path) && text::isValidUtf8(path));
        require(std::ranges::count(path, '/') == 2);
        require(platform::lastPathComponent(path).size() <= archive::maximumNameBytes);
        require(platform::lastPathComponent(platform::parentPath(path)).size() <= archive::maximumNameBytes);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes = fuzz::textOf(data, size);
    checkGroups(bytes);
    checkName(bytes);
    return 0;
}
