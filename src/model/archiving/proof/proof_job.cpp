#include "model/archiving/proof/proof_job.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <deque>
#include <optional>
#include <span>
#include <tuple>
#include <utility>
#include <vector>

#include "archive/checks/proof_lanes.h"
#include "listing/account_titles.h"
#include "listing/message_statistics.h"
#include "platform/threads/parallel.h"
#include "records/stores/proof_store.h"

namespace corvane {

namespace {

using archive::ProofRead;
using archive::ProofReadResult;
using platform::Sha256Digest;

constexpr std::size_t messagesAtATime = 512;

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

class Proof {
  public:
    Proof(const ProofJob& job, const ReportingTask<ProofProgress>& task)
      : job_(job)
      , task_(task)
      , records_(recordsOf(job))
      , sources_(job.inputs, *records_)
      , lanes_(job.support.files())
      , store_(job.support) {}

    ProofEnd run();

  private:
    static SharedArchivedRecords recordsOf(const ProofJob& job);
    std::vector<const MailMessageRecord*> unprovenMessages();
    void prove(std::span<const MailMessageRecord* const> messages);
    static void collect(std::size_t number, const ProofSubject& subject, std::vector<Wanted>& wanted);
    bool readNext(std::vector<ProofSubject>& subjects);
    void keep(const Wanted& wanted, const FileReading& reading, ProofSubject& subject);
    void save();
    void report();

    const ProofJob& job_;
    const ReportingTask<ProofProgress>& task_;
    SharedArchivedRecords records_;
    ProofSources sources_;
    archive::ProofLanes lanes_;
    ProofStore store_;
    std::deque<FileReading> held_; // of the messages at work
    ReadingBatch fresh_;           // not in the store yet
    ReadingBatch all_;
    ProofEnd end_;
    std::optional<std::chrono::steady_clock::time_point> lastReport_;
    std::chrono::steady_clock::time_point lastSave_ = std::chrono::steady_clock::now();
};

SharedArchivedRecords Proof::recordsOf(const ProofJob& job) {
    const SharedArchivedRecords& known = job.availability->proofs->records;
    return known && known->entries() == job.inputs.entries ? known
                                                           : ArchivedRecords::make(job.inputs.entries);
}

// In the order of their files. Counts the others as completed.
std::vector<const MailMessageRecord*> Proof::unprovenMessages() {
    const AvailabilityResult& known = *job_.availability;
    std::vector<const MailMessageRecord*> unproven;
    for (const MailMessageRecord& message : *job_.messages) {
        if (!known.recordedMessageIDs->contains(message.id) ||
            !known.locallyAvailableIDs->contains(message.id) || !job_.scope.holds(message, *known.yearByID))
            continue;
        ++end_.progress.total;
        if (known.proofs->provenIDs->contains(message.id))
            ++end_.progress.completed;
        else
            unproven.push_back(&message);
    }
    std::ranges::sort(unproven, {}, [](const MailMessageRecord* message) { return message->id.view(); });
    return unproven;
}

ProofEnd Proof::run() {
    const auto unproven = unprovenMessages();
    report();
    for (std::size_t begin = 0; begin < unproven.size() && !task_.isCancelled(); begin += messagesAtATime) {
        const std::size_t count = std::min(messagesAtATime, unproven.size() - begin);
        prove(std::span(unproven).subspan(begin, count));
        if (!task_.isCancelled()) end_.progress.completed += static_cast<std::int64_t>(count);
        if (std::chrono::steady_clock::now() - lastSave_ >= saveInterval) save();
        report();
    }
    save();
    end_.wasCancelled = task_.isCancelled();
    end_.hungPlaces = lanes_.hungPlaces();
    end_.readings = std::make_shared<const ReadingBatch>(std::move(all_));
    return std::move(end_);
}

void Proof::prove(std::span<const MailMessageRecord* const> messages) {
    std::vector<ProofSubject> subjects(messages.size());
    platform::parallelFor(0, messages.size(), [&](std::size_t number) {
        sources_.gather(*messages[number], subjects[number]);
        forgetFailures(subjects[number]);
    });
    for (int round = 0; round < roundsAtMost && readNext(subjects); ++round) report();
    held_.clear();
}

void Proof::save() {
    store_.save(fresh_);
    all_.append(std::exchange(fresh_, {}));
    lastSave_ = std::chrono::steady_clock::now();
}

void Proof::collect(std::size_t number, const ProofSubject& subject, std::vector<Wanted>& wanted) {
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
bool Proof::readNext(std::vector<ProofSubject>& subjects) {
    std::vector<Wanted> wanted;
    for (std::size_t number = 0; number < subjects.size(); ++number)
        collect(number, subjects[number], wanted);
    if (wanted.empty() || task_.isCancelled()) return false;
    std::ranges::sort(wanted, {}, &Wanted::order);
    std::vector<ProofRead> reads;
    reads.reserve(wanted.size());
    for (const Wanted& each : wanted) reads.push_back(each.read);
    const std::vector<ProofReadResult> results = lanes_.read(std::move(reads), task_.stopToken());
    for (std::size_t at = 0; at < wanted.size(); ++at) {
        if (!results[at].wasTried) continue;
        ProofSubject& subject = subjects[wanted[at].subject];
        if (results[at].reading) {
            keep(wanted[at], *results[at].reading, subject);
        } else if (!wanted[at].isCopy) {
            // Nothing to read any more, and nothing to wait for.
            subject.files[wanted[at].position].place = ProofFile::Place::outOfReach;
            end_.sawOtherFiles = true;
        }
    }
    return true;
}

void Proof::keep(const Wanted& wanted, const FileReading& reading, ProofSubject& subject) {
    const FileReading& held = held_.emplace_back(reading);
    end_.progress.bytesRead += std::max<std::int64_t>(0, reading.stamp.sizeBytes);
    if (wanted.isCopy) {
        ProofCopy& copy = subject.copies[wanted.position];
        copy.reading = &held;
        copy.stamp = reading.stamp;
        fresh_.copies.push_back({wanted.read.path, reading});
        return;
    }
    ProofFile& file = subject.files[wanted.position];
    if (file.stamp != reading.stamp) end_.sawOtherFiles = true;
    file.reading = &held;
    file.stamp = reading.stamp;
    fresh_.archived[wanted.read.root].push_back({wanted.read.path, reading});
}

void Proof::report() {
    const auto now = std::chrono::steady_clock::now();
    const bool isWhole = end_.progress.completed == end_.progress.total;
    if (lastReport_ && !isWhole && now - *lastReport_ < reportInterval) return;
    lastReport_ = now;
    task_.report(end_.progress);
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
