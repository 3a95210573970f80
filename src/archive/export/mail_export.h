// Copies archived mail out, byte for byte: as an mbox, a folder or a ZIP. Streams, so that memory doesn't
// grow with the mail; what was written is read back before it counts. A place that doesn't answer ends it
// after `platform::placeLimit`. Blocks, on a background thread.
#pragma once

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <stop_token>
#include <string>
#include <vector>

#include "archive/opening/archived_cloud_file_opener.h"
#include "platform/files/layers/file_layer.h"
#include "platform/platform.h"
#include "records/archived/archive_records.h"

namespace corvane {

enum class ExportFormat {
    mbox, // one file
    eml,  // a folder of files by year
    zip,  // one file
};

// Some entries of a shared list, in the order of the export.
struct ExportSelection {
    SharedEntryList entries;
    std::vector<std::uint32_t> positions;
};

struct ExportFailure {
    std::string entryID;
    std::string reason; // for the user
};

struct ExportResult {
    std::int64_t exported = 0;
    std::int64_t bytes = 0; // of the mail
    std::vector<ExportFailure> failures;
    bool wasCancelled = false;
};

// The export as a whole has failed, and nothing of it is left, but for a folder what it holds already, and
// what can't be taken back from a place that doesn't answer. what() is the text for the user.
class ExportError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// Called before each mail and at the end with the numbers done and of all.
using ExportProgress = std::function<void(std::int64_t done, std::int64_t total)>;

struct MailExport {
    // Both have to outlive looks and writes that hung (platform::waitForAbandonedJobs).
    const platform::Platform& platform;
    platform::FileLayer& files;
    ArchivedCloudFileOpener::Limits limits{};

    // `path` is absolute: a file that isn't there, for `eml` a folder, which may be. A mail that can't be
    // read whole, or is no longer what its record says, is a failure of its own and isn't exported. A
    // cancelled export keeps what a folder has; the other formats leave nothing. Throws ExportError.
    [[nodiscard]] ExportResult run(const ExportSelection& selection, ExportFormat format,
                                   const std::string& path, const ExportProgress& progress,
                                   const std::stop_token& stop) const;
};

} // namespace corvane
