#include "mailstore/scan/indexed_records.h"

#include <algorithm>
#include <atomic>
#include <deque>
#include <exception>
#include <stop_token>
#include <string>
#include <string_view>
#include <thread>
#include <utility>

#include "mailstore/folders/store_listing.h"
#include "mailstore/index/candidate_pieces.h"
#include "mailstore/seconds_counter.h"
#include "mailstore/sqlite/mail_index_query_error.h"
#include "platform/files/writing/temporary_file.h"
#include "platform/sqlite.h"
#include "text/case.h"
#include "text/mutex.h"

namespace corvane::mailstore {

namespace {

// More readers of one database only wait for each other.
constexpr unsigned mostLanes = 4;

unsigned laneCount() {
    return std::clamp(std::thread::hardware_concurrency(), 1U, mostLanes);
}

// Lists the folders of the wanted accounts while the shells are at work.
class Prefetch {
  public:
    Prefetch(StoreListing& listing, const std::vector<std::string>& accountURLPrefixes)
      : thread_([&listing, prefixes = accountURLPrefixes](const std::stop_token& stop) {
          listing.prefetch(stop, [&](std::string_view account) { return isWanted(account, prefixes); });
      }) {}

    // From here on it has ended.
    void wait() {
        const text::MutexLock lock(mutex_);
        if (thread_.joinable()) thread_.join();
    }

    void requestStop() { stop_.request_stop(); }

  private:
    static bool isWanted(std::string_view account, const std::vector<std::string>& prefixes) {
        return prefixes.empty() || std::ranges::any_of(prefixes, [&](const std::string& prefix) {
                   return text::containsIgnoringCase(prefix, account);
               });
    }

    text::Mutex mutex_;
    std::jthread thread_;
    std::stop_source stop_ = thread_.get_stop_source();
};

// Files with rows on their way from those who ask to those who make records. Any thread.
class PieceQueue {
  public:
    explicit PieceQueue(unsigned askers)
      : askers_(askers) {}

    void push(platform::TemporaryFile piece) {
        const text::MutexLock lock(mutex_);
        pieces_.push_back(std::move(piece));
        changed_.notifyOne();
    }

    // One of the askers has no more.
    void askerEnded() {
        const text::MutexLock lock(mutex_);
        --askers_;
        changed_.notifyAll();
    }

    // Waits for a piece; nullopt when none can come any more.
    std::optional<platform::TemporaryFile> pop() {
        text::MutexLock lock(mutex_);
        changed_.wait(lock, [this]() REQUIRES(mutex_) { return !pieces_.empty() || askers_ == 0; });
        if (pieces_.empty()) return std::nullopt;
        platform::TemporaryFile piece = std::move(pieces_.front());
        pieces_.pop_front();
        return piece;
    }

  private:
    text::Mutex mutex_;
    text::Condition changed_;
    std::deque<platform::TemporaryFile> pieces_ GUARDED_BY(mutex_);
    unsigned askers_ GUARDED_BY(mutex_);
};

// The first exception of several threads; the others are then asked to stop.
class FirstFailure {
  public:
    explicit FirstFailure(std::stop_source stop)
      : stop_(std::move(stop)) {}

    template <class Call>
    void guard(const Call& call) {
        try {
            call();
        } catch (...) {
            const text::MutexLock lock(mutex_);
            if (!exception_) exception_ = std::current_exception();
            stop_.request_stop();
        }
    }

    // When no other thread guards a call any more.
    void rethrow() {
        const text::MutexLock lock(mutex_);
        if (exception_) std::rethrow_exception(exception_);
    }

  private:
    std::stop_source stop_;
    text::Mutex mutex_;
    std::exception_ptr exception_ GUARDED_BY(mutex_);
};

// One reading of the index. The threads aren't those of the pool that spreads work over the processors: most
// of their time they wait for a process.
class IndexReading {
  public:
    IndexReading(const ScanRequest& request, ScanTimingMetrics& timing)
      : request_(request)
      , timing_(timing)
      , context_(request.context)
      , listing_(std::make_shared<StoreListing>(request.rootPath))
      , prefetch_(*listing_, request.accountURLPrefixes)
      , queue_(laneCount())
      , failure_(stop_) {
        context_.stop = stop_.get_token();
    }

    IndexedRecords run() {
        const std::stop_callback forward(request_.context.stop, [this] { stop_.request_stop(); });
        const std::stop_callback endPrefetch(context_.stop, [this] { prefetch_.requestStop(); });
        std::deque<RecordLane> lanes;
        std::vector<IndexedRecords::LaneRecords> made(laneCount());
        failure_.guard([&] {
            CandidatePieces pieces(context_, request_.rootPath, filter(), laneCount());
            for (unsigned i = 0; i < laneCount(); ++i) lanes.emplace_back(listing_, timing_);
            runLanes(pieces, lanes, made);
        });
        prefetch_.wait();
        failure_.rethrow();
        addLabels(lanes, made);
        timing_.attachmentIndexSeconds = listing_->attachmentSeconds();
        timing_.indexedAttachmentFolders = static_cast<std::int64_t>(listing_->attachmentFolderCount());
        return IndexedRecords(std::move(made));
    }

  private:
    [[nodiscard]] CandidateFilter filter() const {
        return {.maximumYear = request_.maximumYear, .accountURLPrefixes = request_.accountURLPrefixes};
    }

    void runLanes(CandidatePieces& pieces, std::deque<RecordLane>& lanes,
                  std::vector<IndexedRecords::LaneRecords>& made) {
        std::vector<std::jthread> threads;
        for (std::size_t i = 0; i < lanes.size(); ++i) {
            threads.emplace_back([&] {
                failure_.guard([&] { ask(pieces); });
                queue_.askerEnded();
            });
            threads.emplace_back([this, &lane = lanes[i], &records = made[i].pieces] {
                failure_.guard([&] { makeRecords(lane, records); });
            });
        }
    }

    void ask(CandidatePieces& pieces) {
        while (auto piece = pieces.next()) {
            if (context_.stop.stop_requested()) throw ScanStopped();
            queue_.push(std::move(*piece));
        }
    }

    void makeRecords(RecordLane& lane, std::vector<MadeRecords>& records) {
        auto piece = queue_.pop();
        prefetch_.requestStop();
        prefetch_.wait();
        for (; piece; piece = queue_.pop()) {
            if (context_.stop.stop_requested()) throw ScanStopped();
            auto made = lane.make(piece->path());
            if (!made) throw MailIndexQueryError(MailIndexQueryError::Kind::unreadableOutput);
            records.push_back(std::move(*made));
        }
    }

    void addLabels(const std::deque<RecordLane>& lanes, std::vector<IndexedRecords::LaneRecords>& made) {
        AccountScope scope{.urlPrefixes = {}, .namesByPrefix = request_.accountNamesByPrefix, .names = {}};
        if (request_.scopeToCome) {
            auto given = request_.scopeToCome->wait(context_.stop);
            if (!given) throw ScanStopped();
            scope = std::move(*given);
        }
        for (std::size_t i = 0; i < lanes.size(); ++i) {
            for (const RecordLane::Mailbox& mailbox : lanes[i].mailboxes()) {
                auto& labels = made[i].labels.emplace_back();
                if (!isWanted(mailbox.url, scope.urlPrefixes)) continue;
                labels = mailboxLabels(mailbox.url, scope.namesByPrefix);
                timing_.envelopeIndexedMessages += mailbox.candidates;
            }
        }
    }

    // As the query tests it where the accounts are known beforehand.
    static bool isWanted(const std::string& url, const std::vector<std::string>& prefixes) {
        return prefixes.empty() || std::ranges::any_of(prefixes, [&](const std::string& prefix) {
                   const std::string pattern = "%" + withoutImapScheme(prefix) + "%";
                   return sqlite3_strlike(pattern.c_str(), url.c_str(), 0) == 0;
               });
    }

    const ScanRequest& request_;
    ScanTimingMetrics& timing_;
    std::stop_source stop_;
    MailStoreContext context_; // with the stop of this reading
    std::shared_ptr<StoreListing> listing_;
    Prefetch prefetch_;
    PieceQueue queue_;
    FirstFailure failure_;
};

} // namespace

IndexedRecords::IndexedRecords(std::vector<LaneRecords> lanes)
  : lanes_(std::move(lanes)) {
    for (std::uint32_t lane = 0; lane < lanes_.size(); ++lane) {
        for (std::uint32_t piece = 0; piece < lanes_[lane].pieces.size(); ++piece) {
            const MadeRecords& made = lanes_[lane].pieces[piece];
            for (std::uint32_t place = 0; place < made.records.size(); ++place) {
                if (lanes_[lane].labels[made.mailboxes[place]])
                    order_.push_back({made.orders[place], lane, piece, place});
            }
        }
    }
    std::ranges::sort(order_, [](const Entry& a, const Entry& b) { return a.order < b.order; });
}

std::optional<MailMessageRecord> IndexedRecords::next() {
    const Entry& entry = order_[returned_++];
    LaneRecords& lane = lanes_[entry.lane];
    MadeRecords& made = lane.pieces[entry.piece];
    auto record = std::exchange(made.records[entry.place], std::nullopt);
    if (record) lane.labels[made.mailboxes[entry.place]]->applyTo(*record);
    return record;
}

std::optional<IndexedRecords> readIndexedRecords(const ScanRequest& request, ScanTimingMetrics& timing) {
    const SecondsCounter elapsed(timing.envelopeIndexSeconds);
    try {
        return IndexReading(request, timing).run();
    } catch (const MailIndexQueryError& error) {
        if (error.kind() == MailIndexQueryError::Kind::unavailable) return std::nullopt;
        throw;
    }
}

} // namespace corvane::mailstore
