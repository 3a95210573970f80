// One account of the Mail store and its folders.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace corvane {

struct FolderInfo {
    std::string name;
    std::int64_t count = 0;

    friend bool operator==(const FolderInfo&, const FolderInfo&) = default;
};

struct MailAccount {
    std::string urlPrefix; // "imap://" and the UUID whatever the real scheme: the account's key everywhere
    std::string emailAddress;
    std::optional<std::string> duplicationNote;
    std::vector<FolderInfo> folders;
    bool isLocalStore = false;
    std::string scheme;
    std::optional<std::string> linkedAccountEmail;

    [[nodiscard]] const std::string& id() const { return urlPrefix; }

    [[nodiscard]] std::string distinguishedLabel() const;

    friend bool operator==(const MailAccount&, const MailAccount&) = default;
};

// The key of messages without an account, in filters and statistics.
inline constexpr const char* unclassifiedAccountKey = "legacy-unclassified";

} // namespace corvane
