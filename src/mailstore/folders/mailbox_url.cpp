#include "mailstore/folders/mailbox_url.h"

#include <algorithm>

#include <fmt/format.h>

#include "mailstore/folders/store_location.h"
#include "mailstore/property_list.h"
#include "platform/files/directory.h"
#include "platform/files/file_look.h"
#include "platform/paths.h"
#include "text/case.h"
#include "text/charsets/encoding.h"
#include "text/collation.h"
#include "text/split.h"

namespace corvane::mailstore {

namespace {

constexpr std::string_view mailboxSuffix = ".mbox";

struct URLParts {
    std::string host;
    std::string path; // decoded
};

std::string decodedOrRaw(std::string_view text) {
    return text::percentDecoded(text).value_or(std::string(text));
}

bool isScheme(std::string_view text) {
    const auto fits = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '+' ||
               c == '-' || c == '.';
    };
    return !text.empty() && std::ranges::all_of(text, fits);
}

// The host of "user@host:port".
std::string_view hostOfAuthority(std::string_view authority) {
    authority = authority.substr(authority.rfind('@') + 1);
    if (authority.starts_with('[')) return authority.substr(0, authority.find(']') + 1);
    return authority.substr(0, authority.find(':'));
}

// RFC 3986, appendix B.
URLParts partsOf(std::string_view url) {
    URLParts parts;
    url = url.substr(0, url.find_first_of("?#"));
    const std::size_t colon = url.find(':');
    if (colon != std::string_view::npos && isScheme(url.substr(0, colon))) url.remove_prefix(colon + 1);
    if (url.starts_with("//")) {
        url.remove_prefix(2);
        const std::size_t end = std::min(url.find('/'), url.size());
        parts.host = decodedOrRaw(hostOfAuthority(url.substr(0, end)));
        url.remove_prefix(end);
    }
    parts.path = decodedOrRaw(url);
    return parts;
}

bool isSafeComponent(std::string_view component) {
    return component != "." && component != ".." && component.find('/') == std::string_view::npos &&
           component.find('\0') == std::string_view::npos;
}

bool isASCII(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

// A copied store can hold a name in the other normal form of Unicode than the index: where names are bytes,
// the folder is then found by what it means.
std::optional<std::string> childFolder(const std::string& parent, const std::string& name) {
    std::string exact = platform::joinPath(parent, name);
    if (platform::isDirectory(exact)) return exact;
    if (isASCII(name)) return std::nullopt;
    const auto entries = platform::listDirectory(parent, platform::HiddenEntries::skip);
    if (!entries) return std::nullopt;
    const std::string wanted = text::canonicallyComposed(name);
    for (const auto& entry : *entries) {
        if (!isASCII(entry.name) && text::canonicallyComposed(entry.name) == wanted)
            return platform::joinPath(parent, entry.name);
    }
    return std::nullopt;
}

bool cannotLookAt(const std::string& path) {
    return platform::lookAtFile(path).presence == platform::FileLook::Presence::unknown;
}

MailboxPlace dataFolderIn(const std::string& mailboxFolder) {
    const std::string direct = platform::joinPath(mailboxFolder, "Data");
    if (platform::fileExists(direct)) return {direct};
    if (cannotLookAt(direct)) return {.dataRoot = {}, .isOutOfSight = true};
    const auto entries = platform::listDirectory(mailboxFolder, platform::HiddenEntries::skip);
    if (!entries) return {.dataRoot = {}, .isOutOfSight = true};
    MailboxPlace place;
    for (const auto& entry : *entries) {
        if (entry.kind != platform::EntryKind::directory) continue;
        const std::string nested = platform::joinPath(platform::joinPath(mailboxFolder, entry.name), "Data");
        if (platform::fileExists(nested)) return {nested};
        place.isOutOfSight = place.isOutOfSight || cannotLookAt(nested);
    }
    return place;
}

std::string withoutMailboxSuffixes(std::string_view name) {
    return text::replacingAll(name, mailboxSuffix, "");
}

} // namespace

std::string withoutImapScheme(std::string_view accountURLPrefix) {
    return text::replacingAll(accountURLPrefix, "imap://", "");
}

std::optional<std::string> mailboxDataRoot(std::string_view mailboxURL, const std::string& rootPath) {
    return mailboxPlaceBelow(latestMailVersionDirectory(rootPath), mailboxURL).dataRoot;
}

MailboxPlace mailboxPlaceBelow(const std::string& versionDirectory, std::string_view mailboxURL) {
    const URLParts parts = partsOf(mailboxURL);
    if (parts.host.empty() || !isSafeComponent(parts.host)) return {};
    const auto components = text::splitNonEmpty(parts.path, '/');
    if (components.empty() || !std::ranges::all_of(components, isSafeComponent)) return {};
    std::string folder = platform::joinPath(versionDirectory, parts.host);
    for (const std::string_view component : components) {
        std::string name(component);
        if (!component.ends_with(mailboxSuffix)) name += mailboxSuffix;
        auto child = childFolder(folder, name);
        if (!child) return {.dataRoot = {}, .isOutOfSight = cannotLookAt(platform::joinPath(folder, name))};
        folder = std::move(*child);
    }
    return dataFolderIn(folder);
}

std::string messageBucketPath(std::int64_t rowID) {
    if (rowID < 1000) return {};
    std::string path;
    for (std::int64_t thousands = rowID / 1000; thousands > 0; thousands /= 10) {
        if (!path.empty()) path += '/';
        path += static_cast<char>('0' + thousands % 10);
    }
    return path;
}

std::string messagesFolder(const std::string& dataRoot, std::int64_t rowID) {
    const std::string bucket = messageBucketPath(rowID);
    return platform::joinPath(bucket.empty() ? dataRoot : platform::joinPath(dataRoot, bucket), "Messages");
}

std::string mailboxName(std::string_view mailboxURL) {
    const std::string path = partsOf(mailboxURL).path;
    const auto components = text::splitNonEmpty(path, '/');
    return components.empty() ? "Mail" : withoutMailboxSuffixes(components.back());
}

std::string mailboxName(const FileURL& messageFile, const std::string& rootPath) {
    const std::string below = text::replacingAll(platform::parentPath(messageFile.path()), rootPath, "");
    auto parts = text::splitNonEmpty(below, '/');
    std::erase_if(parts,
                  [](std::string_view part) { return part.ends_with(mailboxSuffix) || part == "Messages"; });
    return parts.empty() ? "Mail" : withoutMailboxSuffixes(parts.back());
}

std::optional<std::string> mailboxFolder(const FileURL& messageFile) {
    std::string_view folder = platform::parentPath(messageFile.path());
    while (!folder.empty() && folder != "/") {
        if (text::equalsIgnoringCase(platform::pathExtension(folder), "mbox")) return std::string(folder);
        folder = platform::parentPath(folder);
    }
    return std::nullopt;
}

bool importedMailboxFlag(const FileURL& messageFile) {
    const auto folder = mailboxFolder(messageFile);
    if (!folder) return false;
    const PropertyList list = readPropertyList(platform::joinPath(*folder, "Info.plist"));
    const auto flag = list.find("MailboxHasBeenImported");
    if (flag == list.end()) return false;
    if (const bool* truth = std::get_if<bool>(&flag->second)) return *truth;
    return text::equalsIgnoringCase(std::get<std::string>(flag->second), "yes");
}

std::optional<std::pair<std::string, std::string>>
accountOfMailbox(std::string_view mailboxURL, const AccountNames& accountNamesByPrefix) {
    for (const auto& account : accountNamesByPrefix) {
        const std::string part = withoutImapScheme(account.first);
        if (!part.empty() && text::containsIgnoringCase(mailboxURL, part)) return account;
    }
    return std::nullopt;
}

std::optional<std::pair<std::string, std::string>> accountInfo(const FileURL& messageFile,
                                                               const AccountNames& accountNamesByPrefix) {
    for (const auto& account : accountNamesByPrefix) {
        const std::string folder = fmt::format("/{}/", withoutImapScheme(account.first));
        if (text::containsIgnoringCase(messageFile.path(), folder)) return account;
    }
    return std::nullopt;
}

} // namespace corvane::mailstore
