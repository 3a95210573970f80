// The JSON forms of the records: one table each.
#pragma once

#include <array>
#include <string_view>
#include <tuple>
#include <utility>

#include "records/archived/archive_records.h"
#include "records/json/json_form.h"
#include "records/mail_account.h"
#include "records/mail_message_record.h"
#include "records/statistics_records.h"

namespace corvane {

template <>
struct JsonForm<MailAttachmentRecord> {
    using R = MailAttachmentRecord;
    static constexpr auto fields = std::tuple{jsonField("id", &R::id), jsonField("fileName", &R::fileName),
                                              jsonField("mimeType", &R::mimeType, TextSharing::repeated),
                                              jsonField("estimatedSize", &R::estimatedSize),
                                              jsonField("sourceFileURL", &R::sourceFileURL)};
};

template <>
struct JsonForm<MailMessageRecord> {
    using R = MailMessageRecord;
    static constexpr auto fields =
        std::tuple{jsonField("id", &R::id),
                   jsonField("subject", &R::subject),
                   jsonField("sender", &R::sender, TextSharing::repeated),
                   jsonField("recipients", &R::recipients),
                   jsonField("date", &R::date),
                   jsonField("mailbox", &R::mailbox, TextSharing::repeated),
                   jsonField("accountIdentifier", &R::accountIdentifier, TextSharing::repeated),
                   jsonField("accountName", &R::accountName, TextSharing::repeated),
                   jsonField("isImportedMailbox", &R::isImportedMailbox),
                   jsonField("fileURL", &R::fileURL),
                   jsonField("relatedMessageFileURLs", &R::relatedMessageFileURLs),
                   jsonField("messageIdentifier", &R::messageIdentifier),
                   jsonField("referencedMessageIdentifiers", &R::referencedMessageIdentifiers),
                   jsonField("messageSize", &R::messageSize),
                   jsonField("attachments", &R::attachments),
                   jsonField("preview", &R::preview, TextSharing::repeated)};

    // The id nearly always is the file's path: one copy of the characters serves both.
    static void finish(R& record) {
        if (record.fileURL.path() == record.id) record.fileURL = FileURL(record.id);
    }
};

template <>
struct JsonForm<MailScanSummary> {
    using R = MailScanSummary;
    static constexpr auto fields = std::tuple{jsonField("scannedMessages", &R::scannedMessages),
                                              jsonField("matchedMessages", &R::matchedMessages),
                                              jsonField("attachmentMessages", &R::attachmentMessages),
                                              jsonField("attachments", &R::attachments),
                                              jsonField("bytes", &R::bytes),
                                              jsonField("attachmentBytes", &R::attachmentBytes),
                                              jsonField("accountNames", &R::accountNames),
                                              jsonField("newestDate", &R::newestDate),
                                              jsonField("oldestDate", &R::oldestDate)};
};

template <>
struct JsonForm<YearStat> {
    using R = YearStat;
    static constexpr auto fields = std::tuple{jsonField("year", &R::year),
                                              jsonField("messageCount", &R::messageCount),
                                              jsonField("withAttachmentCount", &R::withAttachmentCount),
                                              jsonField("attachmentCount", &R::attachmentCount),
                                              jsonField("messageBytes", &R::messageBytes),
                                              jsonField("attachmentBytes", &R::attachmentBytes)};
};

template <>
struct JsonForm<AccountYearStatGroup> {
    using R = AccountYearStatGroup;
    static constexpr auto fields =
        std::tuple{jsonField("accountPrefix", &R::accountPrefix), jsonField("accountName", &R::accountName),
                   jsonField("years", &R::years), jsonField("messageCount", &R::messageCount),
                   jsonField("messageBytes", &R::messageBytes)};
};

template <>
struct JsonForm<SpaceSenderStat> {
    using R = SpaceSenderStat;
    static constexpr auto fields =
        std::tuple{jsonField("senderKey", &R::senderKey), jsonField("displayName", &R::displayName),
                   jsonField("messageCount", &R::messageCount), jsonField("bytes", &R::bytes)};
};

template <>
struct JsonForm<SpaceAccountUsage> {
    using R = SpaceAccountUsage;
    static constexpr auto fields = std::tuple{jsonField("accountPrefix", &R::accountPrefix),
                                              jsonField("accountName", &R::accountName),
                                              jsonField("isIMAP", &R::isIMAP),
                                              jsonField("localCount", &R::localCount),
                                              jsonField("localBytes", &R::localBytes),
                                              jsonField("cloudOnlyCount", &R::cloudOnlyCount),
                                              jsonField("cloudOnlyBytes", &R::cloudOnlyBytes),
                                              jsonField("topSenders", &R::topSenders)};
};

template <>
struct JsonForm<FolderInfo> {
    using R = FolderInfo;
    static constexpr auto fields = std::tuple{jsonField("name", &R::name), jsonField("count", &R::count)};
};

template <>
struct JsonForm<MailAccount> {
    using R = MailAccount;
    static constexpr auto fields = std::tuple{jsonField("urlPrefix", &R::urlPrefix),
                                              jsonField("emailAddress", &R::emailAddress),
                                              jsonField("duplicationNote", &R::duplicationNote),
                                              jsonField("folders", &R::folders),
                                              jsonField("isLocalStore", &R::isLocalStore),
                                              jsonField("scheme", &R::scheme),
                                              jsonField("linkedAccountEmail", &R::linkedAccountEmail)};
};

template <>
struct JsonForm<ArchivedEmailRecord> {
    using R = ArchivedEmailRecord;
    static constexpr auto fields =
        std::tuple{jsonField("id", &R::id),
                   jsonField("messageIdentifier", &R::messageIdentifier),
                   jsonField("referencedMessageIdentifiers", &R::referencedMessageIdentifiers),
                   jsonField("subject", &R::subject),
                   jsonField("sender", &R::sender, TextSharing::repeated),
                   jsonField("recipients", &R::recipients, TextSharing::repeated),
                   jsonField("ccRecipients", &R::ccRecipients),
                   jsonField("date", &R::date),
                   jsonField("mailbox", &R::mailbox, TextSharing::repeated),
                   jsonField("accountIdentifier", &R::accountIdentifier, TextSharing::repeated),
                   jsonField("accountName", &R::accountName, TextSharing::repeated),
                   jsonField("sizeBytes", &R::sizeBytes),
                   jsonField("attachmentNames", &R::attachmentNames),
                   jsonField("emlRelativePath", &R::emlRelativePath),
                   jsonField("archivedAt", &R::archivedAt),
                   jsonField("sourceCopyCount", &R::sourceCopyCount),
                   jsonField("sourceCopiesIdentical", &R::sourceCopiesIdentical),
                   jsonField("contentHash", &R::contentHash)};
};

template <>
struct JsonForm<ArchivedEntry> {
    using R = ArchivedEntry;
    static constexpr auto fields =
        std::tuple{jsonField("record", &R::record),
                   jsonField("locationRootPath", &R::locationRootPath, TextSharing::repeated)};
};

template <>
struct JsonForm<EmailArchiveIndex> {
    using R = EmailArchiveIndex;
    static constexpr auto fields =
        std::tuple{jsonField("createdAt", &R::createdAt), jsonField("updatedAt", &R::updatedAt),
                   jsonField("records", &R::records)};
};

template <>
struct JsonEnumForm<ArchiveLocation::Kind> {
    using enum ArchiveLocation::Kind;
    static constexpr std::array<std::pair<ArchiveLocation::Kind, std::string_view>, 3> names = {
        {{cloud, "cloud"}, {removable, "removable"}, {local, "local"}}};
};

template <>
struct JsonForm<ArchiveLocation> {
    using R = ArchiveLocation;
    static constexpr auto fields =
        std::tuple{jsonField("rootPath", &R::rootPath), jsonField("displayName", &R::displayName),
                   jsonField("kind", &R::kind), jsonField("isConnected", &R::isConnected),
                   jsonField("count", &R::count)};
};

template <>
struct JsonEnumForm<ArchivedOriginalPresenceStatus> {
    using enum ArchivedOriginalPresenceStatus;
    static constexpr std::array<std::pair<ArchivedOriginalPresenceStatus, std::string_view>, 3> names = {
        {{unknown, "unknown"}, {present, "present"}, {missing, "missing"}}};
};

} // namespace corvane
