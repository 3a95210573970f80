#include "archive/archive_naming.h"

#include <fmt/format.h>

#include "platform/temporary_file.h"
#include "records/timestamps.h"
#include "text/collation.h"
#include "text/graphemes.h"
#include "text/trim.h"

namespace corvane::archive {

namespace {

constexpr std::size_t fragmentLength = 30;  // user-perceived characters
constexpr std::size_t componentBytes = 255; // of the common file systems
constexpr std::string_view extension = ".eml";
constexpr std::string_view unsafeCharacters{"/:\\?*\"<>|\0", 10};
constexpr std::string_view trimmedCharacters = "-. ";

std::string yearFolder(const MailMessageRecord& message) {
    return message.date ? fmt::format("{}", localYear(*message.date)) : "未知年份";
}

// A message without an account gets a folder with a random name of its own.
std::string accountFolder(const MailMessageRecord& message) {
    std::string name = safeFileName(message.accountName ? message.accountName->view() : std::string_view());
    if (name.size() <= componentBytes) return name;
    const std::string cut(
        text::trimCharacters(text::graphemePrefixWithinBytes(name, componentBytes), trimmedCharacters));
    return cut.empty() ? "未分类邮箱" : cut;
}

// The stem with as much of the fragment as leaves `reserved` bytes of a component free.
std::string stemWithin(std::string_view prefix, std::string_view fragment, std::string_view suffix,
                       std::size_t reserved) {
    std::string stem = safeFileName(fmt::format("{}{}{}", prefix, fragment, suffix));
    while (stem.size() + reserved > componentBytes && !fragment.empty()) {
        const std::size_t excess = stem.size() + reserved - componentBytes;
        const std::size_t kept = fragment.size() > excess ? fragment.size() - excess : 0;
        fragment = text::graphemePrefixWithinBytes(fragment, kept);
        stem = safeFileName(fmt::format("{}{}{}", prefix, fragment, suffix));
    }
    return stem;
}

} // namespace

std::string safeFileName(std::string_view text) {
    std::string name(text);
    for (char& character : name) {
        if (unsafeCharacters.find(character) != std::string_view::npos) character = '-';
    }
    const std::string_view trimmed = text::trimCharacters(name, trimmedCharacters);
    return trimmed.empty() ? platform::randomUuid() : std::string(trimmed);
}

std::string datePrefix(const MailMessageRecord& message) {
    return message.date ? localDay(*message.date) + " " : "";
}

std::string subjectFragment(const MailMessageRecord& message) {
    const std::string_view subject = text::trimWhitespaceAndNewlines(message.subject);
    return std::string(subject.empty() ? "（无主题）" : text::graphemePrefix(subject, fragmentLength));
}

bool UsedPaths::insert(std::string_view relativePath) {
    return composed_.insert(text::canonicallyComposed(relativePath)).second;
}

std::string uniqueRelativePath(const MailMessageRecord& message, std::string_view suffix, UsedPaths& used) {
    const std::string folder = fmt::format("{}/{}", yearFolder(message), accountFolder(message));
    const std::string prefix = datePrefix(message);
    const std::string fragment = subjectFragment(message);
    // A stem without any text is random: all numbers of one message share it.
    const std::string whole = stemWithin(prefix, fragment, suffix, extension.size());
    for (std::size_t number = 1;; ++number) {
        const std::string numeral = number == 1 ? "" : fmt::format("-{}", number);
        const std::size_t reserved = numeral.size() + extension.size();
        const std::string stem = whole.size() + reserved <= componentBytes
                                     ? whole
                                     : stemWithin(prefix, fragment, suffix, reserved);
        std::string path = fmt::format("{}/{}{}{}", folder, stem, numeral, extension);
        if (used.insert(path)) return path;
    }
}

} // namespace corvane::archive
