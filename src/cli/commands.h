// The commands of corvane-cli. Each takes a session and its options, prints its answer and returns the exit
// status; a failure for the user is thrown as CommandFailure.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cli/session.h"
#include "records/model_enums.h"

namespace corvane::cli {

int runAccounts(Session& session, bool json);
int runRefresh(Session& session, bool json);
int runScan(Session& session, std::optional<std::int64_t> maximumYear, bool json);

struct MessagesOptions {
    std::vector<std::string> accounts;
    std::vector<std::int64_t> years;
    std::string query;
    std::int64_t minimumAttachments = 0;
    MailSortMode sort = MailSortMode::newest;
    bool ascending = false;
    MigratedFilter filter = MigratedFilter::all;
};

int runMessages(Session& session, const MessagesOptions& options, bool json);
int runPreview(Session& session, const std::string& file, bool json);
int runDiagnose(Session& session, bool json);
int runStats(Session& session, const std::vector<std::int64_t>& years, bool json);

struct ArchiveOptions {
    std::string destination;
    std::vector<std::string> accounts;
    std::vector<std::int64_t> years;
    std::int64_t minimumBytes = 0;
    std::optional<std::int64_t> maximumYear;
    std::optional<std::int64_t> limit;
    bool withoutIndex = false; // of bodies
};

int runArchive(Session& session, const ArchiveOptions& options, bool json);

struct ProveOptions {
    std::vector<std::string> accounts;
    std::vector<std::int64_t> years;
};

// Status 3 when some messages aren't proven; interrupted, it answers with what it has kept.
int runProve(Session& session, const ProveOptions& options, bool json);
int runLocations(Session& session, bool json);

struct LibraryOptions {
    std::string location;
    std::string mailbox;
    bool ascending = false;
};

int runLibrary(Session& session, const LibraryOptions& options, bool json);
int runSearch(Session& session, const std::string& text, bool json);
int runIndex(Session& session, bool force, bool json);

// `entryID` is the root, U+0001 and the record's id.
int runShow(Session& session, const std::string& entryID, bool json);

struct AttachmentOptions {
    std::string entryID;
    std::string name;
    std::string target; // a new file, or a folder
};

int runAttachment(Session& session, const AttachmentOptions& options, bool json);

// Fills search indexes to the end, with the progress on standard error; the number of messages handled.
std::int64_t fillBodyIndex(Session& session, BodyIndexRequest request);

// Makes a live load of the library.
void loadLibrary(Session& session);

struct VerifyOptions {
    std::string home;
    bool recordsHashes = false; // in records that have none
};

int runVerify(const std::string& root, const VerifyOptions& options, bool json);
int runSums(const std::string& root, bool json);

struct RebuildCommandOptions {
    std::string home;
    bool isDryRun = false;
};

int runRebuild(const std::string& root, const RebuildCommandOptions& options, bool json);

} // namespace corvane::cli
