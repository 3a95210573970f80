#include "model/archiving/proof/proof_job.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <deque>
#include <optional>
#include <set>
#include <span>
#include <stop_token>
#include <string>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

#include "archive/checks/proof_lanes.h"
#include "listing/account_titles.h"
#include "listing/message_statistics.h"
#include "listing/proof/proof_outcome.h"
#include "platform/threads/parallel.h"
#include "records/stores/proof_store.h"
#include "text/mutex.h"

namespace corvane {

namespace {

using archive::ProofRead;
using archive::ProofReadResult;
using platform::Sha256Digest;

using Clock = std::chrono::steady_clock;

constexpr std::size_t messagesAtATime = 512;
constexpr std::size_t strandCount = 2;
constexpr std::size_t lanesOfStrand = 3;

// Copies, then files, then what only a comparison of bodies can tell of both.
constexpr int roundsAtMost = 4;

constexpr std::chrono::milliseconds reportInterval{200};

// Each save waits for the disk. What a killed proof has not saved yet is read again by the next.
constexpr std::chrono::seconds saveInterval{2};

// One file that a subject wants read.
struct Wanted {
    std::size_t subject = 0;
    bool isCopy = false;
    std::size_t position = 0; // among the subject's copies or files
    std::uint64_t placeOnDisk = 0;
    ProofRead read;

    [[nodiscard]] auto order() const { return std::tie(read.root, placeOnDisk, read.path); }
};

// An archived file's body matters to a copy with another hash.
archive::BodyHashNeed bodyNeedOfFile(const ProofSubject& subject) {
    std::vector<Sha256Digest> hashes;
    for (const ProofCopy& copy : subject.copies) {
        if (copy.reading != nullptr && copy.reading->outcome == FileReading::Outcome::complete)
            hashes.push_back(copy.reading->hash);
    }
    return [hashes = std::move(hashes)](const Sha256Digest& hash) {
        return std::ranges::any_of(hashes, [&](const Sha256Digest& other) { return other != hash; });
    };
}

archive::BodyHashNeed bodyNeedOfCopy(const ProofSubject& subject) {
    return [others = knownHashes(subject.files)](const Sha256Digest& hash) {
        return isBodyHashNeeded(hash, others);
    };
}

// What couldn't be read is tried again by every proof.
void forgetFailures(ProofSubject& subject) {
    const auto forget = [](auto& parts) {
        for (auto& part : parts) {
            if (part.reading != nullptr && part.reading->outcome == FileReading::Outcome::unreadable)
                part.reading = nullptr;
        }
    };
    forget(subject.copies);
    forget(subject.files);
}

// What the strands of a proof share. Any thread.
class Proof {
  public:
    Proof(const ProofJob& job, const ReportingTask<ProofProgress>& task)
      : job_(job)
      , task_(task)
      , records_(recordsOf(job))
      , sources_(job.inputs, *records_)
      , store_(job.support) {}

    ProofEnd run();

    // The next messages for a strand; none at the end, and after a stop.
    std::span<const MailMessageRecord* const> take();

    void gather(const MailMessageRecord& message, ProofSubject& subject) const;

    // Adds what was read since the last time.
    void add(ReadingBatch readings, std::int64_t bytes, bool areFilesOther);

    // A strand has read all that it can of so many messages.
    void complete(std::size_t messages);

    void addHungPlaces(const std::set<std::string>& places);

    [[nodiscard]] platform::FileLayer& files() const { return job_.support.files(); }

    [[nodiscard]] std::stop_token stopToken() const { return task_.stopToken(); }

  private:
    static SharedArchivedRecords recordsOf(const ProofJob& job);
    [[nodiscard]] bool stands(const MailMessageRecord& message) const;
    [[nodiscard]] std::vector<const MailMessageRecord*> messagesInScope() const;
    std::vector<const MailMessageRecord*> unprovenMessages();
    void save();
    bool isSaveDue();
    void report() REQUIRES(mutex_);

    const ProofJob& job_;
    const ReportingTask<ProofProgress>& task_;
    SharedArchivedRecords records_;
    ProofSources sources_;
    std::vector<const MailMessageRecord*> unproven_;

    // Held while what is known is saved, and before `mutex_`: what was added last is saved last.
    text::Mutex storeMutex_;
    ProofStore store_ GUARDED_BY(storeMutex_);

    text::Mutex mutex_;
    std::size_t taken_ GUARDED_BY(mutex_) = 0;
    ReadingBatch fresh_ GUARDED_BY(mutex_); // not in the store yet
    ReadingBatch all_ GUARDED_BY(mutex_);
    ProofEnd end_ GUARDED_BY(mutex_);
    std::optional<Clock::time_point> lastReport_ GUARDED_BY(mutex_);
    Clock::time_point lastSave_ GUARDED_BY(mutex_) = Clock::now();
};

// Proves some messages at a time. While one strand works out what to read and keeps what was read, the disks
// and the processors are busy with the reads of the other one.
class Strand {
  public:
    explicit Strand(Proof& proof)
      : proof_(proof)
      , lanes_(proof.files(), platform::placeLimit, lanesOfStrand) {}

    void run();

  private:
    void prove(std::span<const MailMessageRecord* const> messages);
    static void collect(std::size_t number, const ProofSubject& subject, std::vector<Wanted>& wanted);
    bool readNext(std::vector<ProofSubject>& subjects);
    void keep(Wanted& wanted, const FileReading& reading, ProofSubject& subject);

    Proof& proof_;
    archive::ProofLanes lanes_;
    std::deque<FileReading> held_; // of the messages at work
    ReadingBatch read_;            // by the round at work
    std::int64_t bytesRead_ = 0;
    bool sawOtherFiles_ = false;
};

SharedArchivedRecords Proof::recordsOf(const ProofJob& job) {
    const SharedArchivedRecords& known = job.availability->proofs->records;
    return known && known->entries() == job.inputs.entries ? known
                                                           : ArchivedRecords::make(job.inputs.entries);
}

// Whether its files are still those of the proof.
bool Proof::stands(const MailMessageRecord& message) const {
    ProofSubject subject;
    sources_.gather(message, subject);
    return proofVerdict(subject.copies, subject.files).outcome == ProofOutcome::proven;
}

// Those that are to be proven, or have been.
std::vector<const MailMessageRecord*> Proof::messagesInScope() const {
    const AvailabilityResult& known = *job_.availability;
    std::vector<const MailMessageRecord*> messages;
    for (const MailMessageRecord& message : *job_.messages) {
        if (known.recordedMessageIDs->contains(message.id) &&
            known.locallyAvailableIDs->contains(message.id) && job_.scope.holds(message, *known.yearByID))
            messages.push_back(&message);
    }
    return messages;
}

// In the order of their files. Counts the others as completed.
std::vector<const MailMessageRecord*> Proof::unprovenMessages() {
    std::vector<const MailMessageRecord*> unproven = messagesInScope();
    ProofProgress progress;
    progress.total = static_cast<std::int64_t>(unproven.size());
    std::vector<char> isProven(unproven.size());
    platform::parallelFor(0, unproven.size(), [&](std::size_t number) {
        const MailMessageRecord& message = *unproven[number];
        isProven[number] = !task_.isCancelled() &&
                           job_.availability->proofs->provenIDs->contains(message.id) && stands(message);
    });
    std::size_t kept = 0;
    for (std::size_t number = 0; number < unproven.size(); ++number) {
        if (!isProven[number]) unproven[kept++] = unproven[number];
    }
    unproven.resize(kept);
    progress.completed = progress.total - static_cast<std::int64_t>(kept);
    std::ranges::sort(unproven, {}, [](const MailMessageRecord* message) { return message->id.view(); });
    const text::MutexLock lock(mutex_);
    end_.progress = progress;
    report();
    return unproven;
}

ProofEnd Proof::run() {
    unproven_ = unprovenMessages();
    {
        std::vector<std::jthread> strands;
        for (std::size_t begin = 0; begin < unproven_.size() && strands.size() < strandCount;
             begin += messagesAtATime)
            strands.emplace_back([this] { Strand(*this).run(); });
    }
    save();
    const text::MutexLock lock(mutex_);
    end_.wasCancelled = task_.isCancelled();
    end_.readings = std::make_shared<const ReadingBatch>(std::move(all_));
    return std::move(end_);
}

std::span<const MailMessageRecord* const> Proof::take() {
    if (task_.isCancelled()) return {};
    const text::MutexLock lock(mutex_);
    const std::size_t count = std::min(messagesAtATime, unproven_.size() - taken_);
    return std::span(unproven_).subspan(std::exchange(taken_, taken_ + count), count);
}

void Proof::gather(const MailMessageRecord& message, ProofSubject& subject) const {
    sources_.gather(message, subject);
    forgetFailures(subject);
}

void Proof::add(ReadingBatch readings, std::int64_t bytes, bool areFilesOther) {
    const text::MutexLock lock(mutex_);
    fresh_.append(std::move(readings));
    end_.progress.bytesRead += bytes;
    if (areFilesOther) end_.sawOtherFiles = true;
    report();
}

void Proof::complete(std::size_t messages) {
    if (isSaveDue()) save();
    const text::MutexLock lock(mutex_);
    if (!task_.isCancelled()) end_.progress.completed += static_cast<std::int64_t>(messages);
    report();
}

void Proof::addHungPlaces(const std::set<std::string>& places) {
    const text::MutexLock lock(mutex_);
    end_.hungPlaces.insert(places.begin(), places.end());
}

bool Proof::isSaveDue() {
    const text::MutexLock lock(mutex_);
    const auto now = Clock::now();
    if (now - lastSave_ < saveInterval) return false;
    lastSave_ = now;
    return true;
}

void Proof::save() {
    const text::MutexLock storeLock(storeMutex_);
    ReadingBatch fresh;
    {
        const text::MutexLock lock(mutex_);
        fresh = std::exchange(fresh_, {});
    }
    store_.save(fresh);
    const text::MutexLock lock(mutex_);
    all_.append(std::move(fresh));
}

void Proof::report() {
    const auto now = Clock::now();
    const bool isWhole = end_.progress.completed == end_.progress.total;
    if (lastReport_ && !isWhole && now - *lastReport_ < reportInterval) return;
    lastReport_ = now;
    task_.report(end_.progress);
}

void Strand::run() {
    for (auto messages = proof_.take(); !messages.empty(); messages = proof_.take()) {
        prove(messages);
        proof_.complete(messages.size());
    }
    proof_.addHungPlaces(lanes_.hungPlaces());
}

void Strand::prove(std::span<const MailMessageRecord* const> messages) {
    std::vector<ProofSubject> subjects(messages.size());
    platform::parallelFor(0, messages.size(),
                          [&](std::size_t number) { proof_.gather(*messages[number], subjects[number]); });
    for (int round = 0; round < roundsAtMost && readNext(subjects); ++round) {
        proof_.add(std::exchange(read_, {}), std::exchange(bytesRead_, 0),
                   std::exchange(sawOtherFiles_, false));
    }
    held_.clear();
}

void Strand::collect(std::size_t number, const ProofSubject& subject, std::vector<Wanted>& wanted) {
    const WantedReadings next = wantedReadings(subject.copies, subject.files);
    for (const std::size_t position : next.copies) {
        const ProofCopy& copy = subject.copies[position];
        wanted.push_back({number,
                          true,
                          position,
                          copy.placeOnDisk,
                          {"", std::string(copy.path), bodyNeedOfCopy(subject)}});
    }
    for (const std::size_t position : next.files) {
        const ArchivedEntry& entry = *subject.files[position].entry;
        wanted.push_back(
            {number,
             false,
             position,
             0,
             {entry.locationRootPath.str(), entry.record.emlRelativePath.str(), bodyNeedOfFile(subject)}});
    }
}

// Whether there was something to read.
bool Strand::readNext(std::vector<ProofSubject>& subjects) {
    std::vector<Wanted> wanted;
    for (std::size_t number = 0; number < subjects.size(); ++number)
        collect(number, subjects[number], wanted);
    if (wanted.empty() || proof_.stopToken().stop_requested()) return false;
    std::ranges::sort(wanted, {}, &Wanted::order);
    std::vector<ProofRead> reads;
    reads.reserve(wanted.size());
    for (const Wanted& each : wanted) reads.push_back(each.read);
    const std::vector<ProofReadResult> results = lanes_.read(std::move(reads), proof_.stopToken());
    for (std::size_t at = 0; at < wanted.size(); ++at) {
        if (!results[at].wasTried) continue;
        ProofSubject& subject = subjects[wanted[at].subject];
        if (results[at].reading) {
            keep(wanted[at], *results[at].reading, subject);
        } else if (!wanted[at].isCopy) {
            // Nothing to read any more, and nothing to wait for.
            subject.files[wanted[at].position].place = ProofFile::Place::outOfReach;
            sawOtherFiles_ = true;
        }
    }
    return true;
}

void Strand::keep(Wanted& wanted, const FileReading& reading, ProofSubject& subject) {
    const FileReading& held = held_.emplace_back(reading);
    bytesRead_ += std::max<std::int64_t>(0, reading.stamp.sizeBytes);
    if (wanted.isCopy) {
        ProofCopy& copy = subject.copies[wanted.position];
        copy.reading = &held;
        copy.stamp = reading.stamp;
        read_.copies.push_back({std::move(wanted.read.path), reading});
        return;
    }
    ProofFile& file = subject.files[wanted.position];
    if (file.stamp != reading.stamp) sawOtherFiles_ = true;
    file.reading = &held;
    file.stamp = reading.stamp;
    read_.archived[wanted.read.root].push_back({std::move(wanted.read.path), reading});
}

} // namespace

bool ProofScope::holds(const MailMessageRecord& message, const YearByID& yearByID) const {
    if (!accountPrefixes.empty() && !accountPrefixes.contains(std::string(accountFilterKey(message))))
        return false;
    if (years.empty()) return true;
    const auto year = yearIn(yearByID, message);
    return year && years.contains(*year);
}

ProofEnd runProof(const ProofJob& job, const ReportingTask<ProofProgress>& task) {
    // Before the archives were looked at there is nothing to compare with.
    if (!job.inputs.looks) return {};
    return Proof(job, task).run();
}

} // namespace corvane
