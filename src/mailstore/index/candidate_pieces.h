// The messages of a scan, asked of the index in pieces by ranges of ROWIDs: each piece is one query of the
// shell with a time limit of its own, so that no store is too large, and several can be asked at a time. How
// many rows a piece covers follows from how long the earlier ones took.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "mailstore/index/candidate_query.h"
#include "mailstore/mail_store_context.h"
#include "mailstore/sqlite/sqlite_shell.h"
#include "platform/files/writing/temporary_file.h"
#include "text/mutex.h"

namespace corvane::mailstore {

// What the shape of the candidate query depends on.
struct IndexOutline {
    bool hasMessageIDHeader = false; // some stores lack the column
    RowIDRange rows;                 // one that holds no message when there are none
};

// A lock or an error doesn't mean that a column isn't there, so it is an error. Throws MailIndexQueryError
// and ScanStopped.
IndexOutline readIndexOutline(const MailStoreContext& context, const std::string& envelopeIndexPath);

// The ranges that are still to be asked, from the lowest ROWID on. One thread at a time.
class RowIDRanges {
  public:
    // `lanes` is how many askers share them.
    RowIDRanges(const RowIDRange& rows, unsigned lanes);

    // Nullopt when none is left.
    std::optional<RowIDRange> next();

    // The range was had in that time.
    void answered(const RowIDRange& range, std::chrono::steady_clock::duration time);

    // The range wasn't had in its time: its halves are to be asked. False for a single row.
    bool halve(const RowIDRange& range);

    // No longer than what is asked at a time.
    [[nodiscard]] bool isUsual(const RowIDRange& range) const;

  private:
    std::optional<RowIDRange> rest_;
    std::vector<RowIDRange> halves_;
    std::uint64_t width_;
    unsigned lanes_;
};

// Any thread.
class CandidatePieces {
  public:
    // Looks at the index. Throws MailIndexQueryError, `unavailable` when there is no index or no shell, and
    // ScanStopped after a requested stop of the context.
    CandidatePieces(const MailStoreContext& context, const std::string& rootPath, CandidateFilter filter,
                    unsigned lanes);

    // Asks the next piece and returns its rows, ascending by ROWID; nullopt when there is no further one. A
    // piece that isn't had in its time is asked again in halves while the index gives an answer at all.
    // Throws as above, `timedOut` for a piece without an answer.
    std::optional<platform::TemporaryFile> next();

  private:
    std::optional<RowIDRange> nextRange();
    void halve(const RowIDRange& range, bool hasBegunToAnswer);

    const MailStoreContext& context_;
    std::string indexPath_;
    CandidateFilter filter_;
    IndexOutline outline_;
    text::Mutex mutex_;
    RowIDRanges ranges_ GUARDED_BY(mutex_);
};

} // namespace corvane::mailstore
