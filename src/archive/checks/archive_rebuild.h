// The way back for an archive whose index is lost, damaged or doesn't name all of its files: takes .eml files
// that no record names into the index, from their own headers, and with the attachments that are in them. The
// ids are those that a scan of the same mail gives, so what was proven by the lost index can be proven by the
// new one; where Mail knows a message by other words than its header, the last scan has them. A .eml file is
// never touched, and records that are there stay as they are, but for the path of one whose file has been
// renamed. Blocks, on a background thread; a place that doesn't answer has `platform::placeLimit` a step.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include "archive/attachments/listed_names.h"
#include "archive/checks/scanned_copies.h"
#include "platform/files/layers/file_layer.h"
#include "records/archived/archive_records.h"
#include "records/archived/file_readings.h"

namespace corvane {

struct ArchiveRebuild {
    struct Failure {
        std::string path;   // relative to the root
        std::string reason; // for the user
    };

    std::int64_t adopted = 0; // files
    std::int64_t records = 0; // of the index as it is now, or would be
    // Adopted mails whose records list no attachments because nobody could look through the mail.
    std::int64_t withUnknownAttachments = 0;
    // Files and folders that couldn't be taken in, and files that hold the same mail as another one.
    std::vector<Failure> failures;
    // Of every adopted file, as it was read.
    std::vector<ArchivedFileReading> readings;
    bool wasCancelled = false; // then nothing was changed
};

struct RebuildOptions {
    bool isDryRun = false; // looks only
    // Gets the numbers of files read and of all that no record names.
    std::function<void(std::size_t, std::size_t)> progress{};
    std::function<void(const std::string&)> markHidden{}; // empty: no file is hidden
    std::function<Date()> now{};                          // empty: the system's
    archive::ListedNames attachmentNames{};               // empty: records get none but those of the scan
    archive::ScannedMail scanned{};
};

// Makes an index where there is none; one that can't be decoded is kept aside. No index is made for a folder
// without mail. The archive is locked meanwhile, and its index replaced in one step at the end. Throws
// ArchiveAccessError when the folder can't be read, the index can't be looked at or saved, or somebody else
// has the lock: nothing was changed then.
ArchiveRebuild rebuildArchive(const std::string& root, const RebuildOptions& options = {},
                              const std::stop_token& stop = {},
                              platform::FileLayer& files = platform::posixFileLayer());

// What there is to rebuild in a folder whose index is missing or damaged.
struct RebuildNeed {
    std::int64_t mails = 0; // files that lie where an archive keeps its mail; never 0
    bool isDamaged = false; // else there is no index

    friend bool operator==(const RebuildNeed&, const RebuildNeed&) = default;
};

// Absent when the index can be used, there is no mail, or nobody can look. Only looks; lists the folders of
// years alone.
std::optional<RebuildNeed> rebuildNeed(const std::string& root, const std::stop_token& stop = {},
                                       platform::FileLayer& files = platform::posixFileLayer());

} // namespace corvane
