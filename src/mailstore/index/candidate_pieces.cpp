#include "mailstore/index/candidate_pieces.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "mailstore/folders/store_location.h"
#include "mailstore/index/indexed_messages.h"
#include "mailstore/reader_logs.h"
#include "mailstore/sqlite/json_rows.h"
#include "mailstore/sqlite/mail_index_query_error.h"

namespace corvane::mailstore {

namespace {

using Clock = std::chrono::steady_clock;
using ErrorKind = MailIndexQueryError::Kind;
using std::chrono::milliseconds;

// A shell takes 5 ms to start; pieces of these sizes take a twentieth of a second and more.
constexpr std::uint64_t narrowest = 4096;
constexpr std::uint64_t firstWidth = 16'384;
constexpr std::uint64_t widest = std::uint64_t(1) << 62;
constexpr milliseconds quick{80};
constexpr milliseconds slow{500};

std::uint64_t widthOf(const RowIDRange& range) {
    return static_cast<std::uint64_t>(range.last) - static_cast<std::uint64_t>(range.first);
}

std::int64_t rowAt(const RowIDRange& range, std::uint64_t place) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(range.first) + place);
}

// Nothing is asked of an index that can't be: its path, else `unavailable`.
std::string queryableIndex(const MailStoreContext& context, const std::string& rootPath) {
    if (!canQueryEnvelopeIndex(context, rootPath)) throw MailIndexQueryError(ErrorKind::unavailable);
    return envelopeIndexPath(rootPath);
}

[[noreturn]] void throwTimedOut(const MailStoreContext& context) {
    const double limit = std::chrono::duration<double>(context.queryTimeLimit).count();
    debugLog(
        context.support,
        fmt::format("indexedMessageCandidates timed out after {:.1f}s; likely Mail Envelope Index is locked",
                    limit));
    throw MailIndexQueryError(ErrorKind::timedOut);
}

// The answer of the shell, or the error that its failure is for the user.
platform::TemporaryFile requireOutput(const MailStoreContext& context, ShellResult result) {
    switch (result.kind) {
    case ShellResult::Kind::succeeded:
        return std::move(*result.output);
    case ShellResult::Kind::noOutputFile:
        throw MailIndexQueryError(ErrorKind::unreadableOutput);
    case ShellResult::Kind::launchFailed:
        throw MailIndexQueryError(ErrorKind::launchFailed, result.detail);
    case ShellResult::Kind::stopped:
        throw ScanStopped();
    case ShellResult::Kind::failed:
        throw MailIndexQueryError(ErrorKind::queryFailed, result.detail);
    case ShellResult::Kind::timedOut:
        break;
    }
    throwTimedOut(context);
}

// A failure may be a lock of a moment, so it is asked once more.
ShellResult queryRows(const MailStoreContext& context, const std::string& index, std::string sql) {
    const ShellQuery query{.databasePath = index,
                           .sql = std::move(sql),
                           .timeLimit = context.queryTimeLimit,
                           .format = ShellQuery::Format::json,
                           .outputPrefix = "corvane-envelope-",
                           .outputExtension = ".tsv"};
    ShellResult result = runShell(context, query);
    return result.kind == ShellResult::Kind::failed ? runShell(context, query) : std::move(result);
}

} // namespace

IndexOutline readIndexOutline(const MailStoreContext& context, const std::string& envelopeIndexPath) {
    ShellResult result =
        queryRows(context, envelopeIndexPath,
                  "SELECT (SELECT COUNT(*) FROM pragma_table_info('message_global_data') "
                  "WHERE name='message_id_header') AS header, (SELECT MIN(ROWID) FROM messages) AS first, "
                  "(SELECT MAX(ROWID) FROM messages) AS last;");
    const platform::TemporaryFile output = requireOutput(context, std::move(result));
    IndexOutline outline;
    bool isAnswered = false;
    const bool isWhole = readJsonRows(output.path(), [&](JsonRow& row) {
        const auto columns = row.integer("header");
        const auto first = row.integer("first");
        const auto last = row.integer("last");
        isAnswered = columns.has_value();
        outline.hasMessageIDHeader = columns.value_or(0) > 0;
        if (first && last && *first <= *last) outline.rows = RowIDRange{*first, *last};
    });
    if (!isWhole || !isAnswered) throw MailIndexQueryError(ErrorKind::unreadableOutput);
    return outline;
}

RowIDRanges::RowIDRanges(const RowIDRange& rows, unsigned lanes)
  : rest_(rows)
  , width_(firstWidth)
  , lanes_(std::max(lanes, 1U)) {}

// Towards the end the pieces become narrower, so that all askers end together.
std::optional<RowIDRange> RowIDRanges::next() {
    if (!halves_.empty()) {
        const RowIDRange half = halves_.back();
        halves_.pop_back();
        return half;
    }
    if (!rest_) return std::nullopt;
    const std::uint64_t all = widthOf(*rest_);
    const std::uint64_t width = std::min(width_, std::max(narrowest, all / lanes_ / 2));
    if (all < width) return std::exchange(rest_, std::nullopt);
    const RowIDRange range{rest_->first, rowAt(*rest_, width - 1)};
    rest_->first = range.last + 1;
    return range;
}

void RowIDRanges::answered(const RowIDRange& range, Clock::duration time) {
    if (time < quick && widthOf(range) + 1 >= width_) width_ = std::min(widest, width_ * 2);
    if (time > slow && width_ > narrowest) width_ = std::max(narrowest, width_ / 2);
}

bool RowIDRanges::halve(const RowIDRange& range) {
    if (range.first == range.last) return false;
    const std::uint64_t half = widthOf(range) / 2;
    const std::int64_t middle = rowAt(range, half);
    halves_.push_back({middle + 1, range.last});
    halves_.push_back({range.first, middle});
    width_ = std::max<std::uint64_t>(1, std::min(width_, half));
    return true;
}

bool RowIDRanges::isUsual(const RowIDRange& range) const {
    return widthOf(range) < firstWidth;
}

CandidatePieces::CandidatePieces(const MailStoreContext& context, const std::string& rootPath,
                                 CandidateFilter filter, unsigned lanes)
  : context_(context)
  , indexPath_(queryableIndex(context, rootPath))
  , filter_(std::move(filter))
  , outline_(readIndexOutline(context, indexPath_))
  , ranges_(outline_.rows, lanes) {}

std::optional<platform::TemporaryFile> CandidatePieces::next() {
    while (const auto range = nextRange()) {
        const auto begin = Clock::now();
        ShellResult result =
            queryRows(context_, indexPath_, candidateQuery(filter_, outline_.hasMessageIDHeader, *range));
        if (result.kind == ShellResult::Kind::timedOut) {
            halve(*range, result.hasBegunToAnswer);
            continue;
        }
        const text::MutexLock lock(mutex_);
        ranges_.answered(*range, Clock::now() - begin);
        return requireOutput(context_, std::move(result));
    }
    return std::nullopt;
}

std::optional<RowIDRange> CandidatePieces::nextRange() {
    const text::MutexLock lock(mutex_);
    return ranges_.next();
}

// An index that gives no row of a usual range is locked or out of reach, and half a range would wait as long.
void CandidatePieces::halve(const RowIDRange& range, bool hasBegunToAnswer) {
    const text::MutexLock lock(mutex_);
    const bool isHopeless = !hasBegunToAnswer && ranges_.isUsual(range);
    if (isHopeless || !ranges_.halve(range)) throwTimedOut(context_);
}

} // namespace corvane::mailstore
