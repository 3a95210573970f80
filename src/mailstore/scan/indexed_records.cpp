#include "mailstore/scan/indexed_records.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <thread>
#include <unordered_map>
#include <utility>

#include "mailstore/folders/message_file_index.h"
#include "mailstore/index/indexed_messages.h"
#include "mailstore/index/mail_index_query_error.h"
#include "mailstore/scan/parse_indexed_message.h"
#include "mailstore/seconds_counter.h"
#include "platform/parallel.h"
#include "text/case.h"
#include "text/mutex.h"

namespace corvane::mailstore {

namespace {

constexpr std::size_t piecesInFlight = 4;

// Lists the folders of the wanted accounts while the shell is at work.
class Prefetch {
  public:
    Prefetch(StoreListing& listing, const std::vector<std::string>& accountURLPrefixes)
      : thread_([&listing, prefixes = accountURLPrefixes](const std::stop_token& stop) {
          listing.prefetch(stop, [&](std::string_view account) { return isWanted(account, prefixes); });
      }) {}

    // Before anything is asked of the listing.
    void finish() {
        if (!thread_.joinable()) return;
        thread_.request_stop();
        thread_.join();
    }

  private:
    static bool isWanted(std::string_view account, const std::vector<std::string>& prefixes) {
        return prefixes.empty() || std::ranges::any_of(prefixes, [&](const std::string& prefix) {
                   return text::containsIgnoringCase(prefix, account);
               });
    }

    std::jthread thread_;
};

struct MadeRecords {
    ScannedRecords records;
    std::int64_t candidates = 0;
    bool isDamaged = false;
};

// Makes the records of one piece of rows after the other. One for each thread.
class RecordLane {
  public:
    RecordLane(const std::shared_ptr<StoreListing>& listing, const AccountNames& names,
               ScanTimingMetrics& timing)
      : files_(listing)
      , names_(names)
      , timing_(timing) {}

    MadeRecords make(const JsonRowPiece& piece) {
        MadeRecords made;
        made.records.reserve(usualCount_);
        const bool isWhole = parser_.parse(piece, [&](JsonRow& row) {
            const auto candidate = candidateOf(row);
            if (!candidate) return;
            ++made.candidates;
            addRecord(*candidate, made.records);
        });
        made.isDamaged = !isWhole;
        usualCount_ = made.records.size() + made.records.size() / 32;
        return made;
    }

  private:
    struct Mailbox {
        MessageFileIndex::Mailbox& files;
        MailboxLabels labels;
    };

    Mailbox& mailbox(std::string_view url) {
        if (const auto known = mailboxes_.find(url); known != mailboxes_.end()) return known->second;
        return mailboxes_.emplace(url, Mailbox{files_.mailbox(url), mailboxLabels(url, names_)})
            .first->second;
    }

    // Messages that only the server has are left out.
    void addRecord(const IndexedMessageCandidate& candidate, ScannedRecords& records) {
        const Mailbox& in = mailbox(candidate.mailboxURL);
        MessageFileIndex::Bucket* bucket = files_.bucketOfExisting(in.files, candidate.rowID);
        if (bucket == nullptr) return;
        records.emplace_back();
        try {
            const FileURL file(SharedText(bucket->folder->filePath(candidate.rowID)));
            const auto stored = files_.storedAttachments(*bucket, candidate.rowID);
            records.back() = parseIndexedMessage(file, candidate, stored, in.labels, texts_, timing_);
        } catch (const std::exception&) {
            records.back().reset(); // one message that can't be parsed doesn't stop a scan
        }
    }

    MessageFileIndex files_;
    const AccountNames& names_;
    ScanTimingMetrics& timing_;
    JsonRowParser parser_;
    TextInterner texts_;
    std::size_t usualCount_ = 0;                                              // of records in a piece
    std::unordered_map<std::string, Mailbox, TextHash, TextEqual> mailboxes_; // by url
};

// Reads the rows of one query: on the scan's thread while the shell runs, which leaves the other processor to
// the shell, and in several lanes what is left then.
class RecordReader {
  public:
    RecordReader(const ScanRequest& request, ScanTimingMetrics& timing)
      : request_(request)
      , timing_(timing)
      , listing_(std::make_shared<StoreListing>(request.rootPath))
      , prefetch_(*listing_, request.accountURLPrefixes) {}

    bool readAhead(const std::string& path) {
        startFile(path);
        auto piece = isDamaged_ ? std::nullopt : file_->next(false);
        if (piece) add(make(*piece));
        return piece.has_value();
    }

    std::vector<ScannedRecords> finish(const std::string& path, const std::stop_token& stop) {
        startFile(path);
        prefetch_.finish();
        platform::orderedPipeline(
            piecesInFlight, [&] { return isDamaged_ ? std::nullopt : file_->next(true); },
            [&](const JsonRowPiece& piece) {
                if (stop.stop_requested()) throw ScanStopped();
                return make(piece);
            },
            [&](MadeRecords made) { add(std::move(made)); });
        if (isDamaged_ || file_->hasFailed())
            throw MailIndexQueryError(MailIndexQueryError::Kind::unreadableOutput);
        timing_.envelopeIndexedMessages = candidates_;
        timing_.attachmentIndexSeconds = listing_->attachmentSeconds();
        timing_.indexedAttachmentFolders = static_cast<std::int64_t>(listing_->attachmentFolderCount());
        return std::move(pieces_);
    }

  private:
    void startFile(const std::string& path) {
        if (file_ && path == path_) return;
        path_ = path;
        file_.emplace(path);
        pieces_.clear();
        candidates_ = 0;
        isDamaged_ = false;
    }

    MadeRecords make(const JsonRowPiece& piece) {
        std::unique_ptr<RecordLane> lane = takeLane();
        MadeRecords made = lane->make(piece);
        const text::MutexLock lock(lanesMutex_);
        idleLanes_.push_back(std::move(lane));
        return made;
    }

    std::unique_ptr<RecordLane> takeLane() {
        const text::MutexLock lock(lanesMutex_);
        if (idleLanes_.empty()) {
            prefetch_.finish();
            return std::make_unique<RecordLane>(listing_, request_.accountNamesByPrefix, timing_);
        }
        auto lane = std::move(idleLanes_.back());
        idleLanes_.pop_back();
        return lane;
    }

    void add(MadeRecords made) {
        if (made.isDamaged) isDamaged_ = true;
        candidates_ += made.candidates;
        pieces_.push_back(std::move(made.records));
    }

    const ScanRequest& request_;
    ScanTimingMetrics& timing_;
    std::shared_ptr<StoreListing> listing_;
    Prefetch prefetch_;
    text::Mutex lanesMutex_;
    std::vector<std::unique_ptr<RecordLane>> idleLanes_ GUARDED_BY(lanesMutex_);
    std::string path_;
    std::optional<JsonRowFile> file_;
    std::vector<ScannedRecords> pieces_;
    std::int64_t candidates_ = 0;
    std::atomic<bool> isDamaged_ = false;
};

} // namespace

std::optional<IndexedRecords> readIndexedRecords(const ScanRequest& request, ScanTimingMetrics& timing,
                                                 const std::stop_token& stop) {
    const SecondsCounter elapsed(timing.envelopeIndexSeconds);
    RecordReader reader(request, timing);
    const CandidateFilter filter{.maximumYear = request.maximumYear,
                                 .accountURLPrefixes = request.accountURLPrefixes};
    try {
        auto output = runCandidateQuery(request.context, request.rootPath, filter, stop,
                                        [&](const std::string& path) { return reader.readAhead(path); });
        auto pieces = reader.finish(output.path(), stop);
        return IndexedRecords{.pieces = std::move(pieces), .output = std::move(output)};
    } catch (const MailIndexQueryError& error) {
        if (error.kind() == MailIndexQueryError::Kind::unavailable) return std::nullopt;
        throw;
    }
}

} // namespace corvane::mailstore
