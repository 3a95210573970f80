// What an archive holds and how a run of the archiver reports.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "records/archived/file_readings.h"
#include "records/file_url.h"
#include "records/values.h"
#include "text/shared_text.h"

namespace corvane {

// One row of archive-index.json, one .eml in an archive.
struct ArchivedEmailRecord {
    SharedText id; // stable id, with "#v" and a number for each of several differing copies
    std::optional<SharedText> messageIdentifier;
    std::optional<std::vector<SharedText>> referencedMessageIdentifiers;
    SharedText subject;
    SharedText sender;
    SharedText recipients;
    std::optional<SharedText> ccRecipients;
    std::optional<Date> date;
    SharedText mailbox;
    std::optional<SharedText> accountIdentifier;
    std::optional<SharedText> accountName;
    std::int64_t sizeBytes = 0; // of the .eml file
    std::vector<SharedText> attachmentNames;
    SharedText emlRelativePath; // to the archive's root; from outside, so it may lead anywhere
    Date archivedAt{};
    std::int64_t sourceCopyCount = 0; // files of the message in Mail's store
    bool sourceCopiesIdentical = false;
    // Of the .eml as it was read back, see records/content_hash.h; absent in indexes of older versions.
    std::optional<SharedText> contentHash{};

    friend bool operator==(const ArchivedEmailRecord&, const ArchivedEmailRecord&) = default;
};

struct ArchivedEntry {
    ArchivedEmailRecord record;
    SharedText locationRootPath;

    // Root, U+0001 and record id: unique over all archives, and never split again.
    [[nodiscard]] std::string id() const;

    friend bool operator==(const ArchivedEntry&, const ArchivedEntry&) = default;
};

using SharedEntryList = std::shared_ptr<const std::vector<ArchivedEntry>>;

struct EmailArchiveIndex {
    Date createdAt{};
    Date updatedAt{};
    std::vector<ArchivedEmailRecord> records;

    // Both dates of the moment of the first use, no records.
    static const EmailArchiveIndex& empty();

    friend bool operator==(const EmailArchiveIndex&, const EmailArchiveIndex&) = default;
};

struct ArchiveLocation {
    enum class Kind { cloud, removable, local };

    std::string rootPath;
    std::string displayName;
    Kind kind = Kind::local;
    bool isConnected = false;
    std::int64_t count = 0; // messages in the library

    [[nodiscard]] const std::string& id() const { return rootPath; }

    // The symbol's name on the screens.
    [[nodiscard]] const char* symbol() const;

    friend bool operator==(const ArchiveLocation&, const ArchiveLocation&) = default;
};

struct EmailArchiveProgress {
    std::int64_t completed = 0;
    std::int64_t total = 0;
    std::optional<std::string> currentSubject;
    std::string statusText;

    // 0 for an empty run; not clamped.
    [[nodiscard]] double fraction() const {
        return total < 1 ? 0.0 : static_cast<double>(completed) / static_cast<double>(total);
    }

    friend bool operator==(const EmailArchiveProgress&, const EmailArchiveProgress&) = default;
};

struct EmailArchiveFailure {
    Uuid id;
    std::string subject;
    FileURL messageFileURL;
    std::string reason; // for the user

    friend bool operator==(const EmailArchiveFailure&, const EmailArchiveFailure&) = default;
};

struct EmailArchiveRunResult {
    std::int64_t archivedCount = 0;
    std::int64_t skippedAlreadyArchived = 0;
    std::int64_t failedCount = 0; // messages with a failure
    std::int64_t archivedBytes = 0;
    FileURL indexURL;
    bool wasCancelled = false;
    std::int64_t triedCount = 0; // messages the run came to; all of them unless cancelled
    std::vector<std::string> variantWarnings;
    // What the user has to know of the archive itself, such as an index that was damaged.
    std::vector<std::string> archiveWarnings;
    // One message may have several, and be archived all the same: a copy that couldn't be read is one.
    std::vector<EmailArchiveFailure> failures;
    // What the run has read: the copies it archived, and the files of the archive that it read back.
    std::vector<CopyReading> copyReadings;
    std::vector<ArchivedFileReading> archivedReadings;

    // A run that was only cancelled has none.
    [[nodiscard]] bool hasIssues() const {
        return failedCount > 0 || !variantWarnings.empty() || !archiveWarnings.empty();
    }
};

enum class ArchivedOriginalPresenceStatus { unknown, present, missing };

} // namespace corvane
