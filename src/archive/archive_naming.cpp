#include "archive/archive_naming.h"

#include <algorithm>

#include <fmt/format.h>

#include "platform/files/writing/temporary_file.h"
#include "records/texts/missing_fields.h"
#include "records/timestamps.h"
#include "text/collation.h"
#include "text/graphemes.h"
#include "text/hidden_characters.h"
#include "text/trim.h"

namespace corvane::archive {

namespace {

using namespace std::string_view_literals;

constexpr std::size_t subjectCharacters = 30;
constexpr std::string_view fileExtension = ".eml";

// The same as safeFileName, but empty when nothing is left.
std::string safeText(std::string_view text) {
    std::string safe = text::withoutHiddenCharacters(text);
    const auto isRefused = [](char byte) { return "/:\\?*\"<>|"sv.find(byte) != std::string_view::npos; };
    std::ranges::replace_if(safe, isRefused, '-');
    return std::string(text::trimCharacters(safe, "-. "));
}

std::string namedOrRandom(std::string name) {
    return name.empty() ? platform::randomUuid() : std::move(name);
}

std::string accountFolder(const MailMessageRecord& message) {
    std::string name = safeText(message.accountName.value_or(SharedText()));
    if (name.size() > maximumNameBytes) {
        name = safeText(text::graphemePrefixWithinBytes(name, maximumNameBytes));
    }
    return namedOrRandom(std::move(name));
}

// What makes up the name of a message's file, before it is cut to what fits.
struct FileStem {
    std::string prefix;
    std::string subject;
    std::string_view suffix;

    [[nodiscard]] std::string fitting(std::size_t bytes) const {
        std::string name = safeText(prefix + subject + std::string(suffix));
        if (name.size() <= bytes) return name;
        for (std::size_t count = text::graphemeCount(subject); count-- > 0 && name.size() > bytes;) {
            name = safeText(fmt::format("{}{}{}", prefix, text::graphemePrefix(subject, count), suffix));
        }
        return name;
    }
};

} // namespace

std::string safeFileName(std::string_view text) {
    return namedOrRandom(safeText(text));
}

std::string yearFolder(const std::optional<Date>& date) {
    return date ? std::to_string(localYear(*date)) : "未知年份";
}

std::string datePrefix(const MailMessageRecord& message) {
    return message.date ? localDay(*message.date) + " " : std::string();
}

std::string subjectFragment(const MailMessageRecord& message) {
    const std::string subject = text::withoutHiddenCharacters(message.subject);
    const std::string_view trimmed = text::trimWhitespaceAndNewlines(subject);
    if (trimmed.empty()) return std::string(missingSubjectInName);
    return std::string(text::graphemePrefix(trimmed, subjectCharacters));
}

void ArchivePaths::markUsed(const SharedText& relativePath) {
    use(relativePath);
}

bool ArchivePaths::use(const SharedText& relativePath) {
    const std::string composed = text::canonicallyComposed(relativePath);
    // Nearly every path is composed already, and then shares the record's characters.
    return used_.insert(relativePath == composed ? relativePath : SharedText(composed)).second;
}

std::string ArchivePaths::uniqueRelativePath(const MailMessageRecord& message, std::string_view suffix) {
    const std::string folder = fmt::format("{}/{}/", yearFolder(message.date), accountFolder(message));
    const FileStem stem{datePrefix(message), subjectFragment(message), suffix};
    const std::size_t room = maximumNameBytes - fileExtension.size();
    const std::string plain = namedOrRandom(stem.fitting(room));
    std::string path = folder + plain + std::string(fileExtension);
    if (use(SharedText(path))) return path;
    std::int64_t& number = nextNumbers_.try_emplace(folder + plain, 2).first->second;
    while (true) {
        const std::string tail = fmt::format("-{}", number++);
        // Only a name that is too long with its number is cut again.
        std::string name = plain.size() + tail.size() <= room ? plain : stem.fitting(room - tail.size());
        path = fmt::format("{}{}{}{}", folder, namedOrRandom(std::move(name)), tail, fileExtension);
        if (use(SharedText(path))) return path;
    }
}

} // namespace corvane::archive
