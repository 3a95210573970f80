#include "archive/checks/proof_lanes.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <iterator>
#include <thread>
#include <utility>

namespace corvane::archive {

namespace {

// Neighbours on the disk are read by one lane.
constexpr std::size_t readsAtATime = 32;

} // namespace

// A few files of one place. What was read is looked at up to `done`, also when the rest hangs.
struct ProofLanes::Share {
    platform::FileLayer& files;
    std::stop_token stop;
    std::vector<ProofRead> reads;
    std::vector<ProofReadResult> results;
    std::atomic<std::size_t> done = 0;
    bool hasHung = false; // of the lane, not of the job
};

ProofLanes::ProofLanes(platform::FileLayer& files, std::chrono::nanoseconds limit, std::size_t laneCount)
  : files_(files)
  , limit_(limit) {
    for (std::size_t lane = 0; lane < laneCount; ++lane)
        workers_.push_back(std::make_unique<platform::TimeLimitedWorker>());
}

void ProofLanes::readShare(const std::shared_ptr<Share>& share, platform::JobLimit& limit) {
    std::optional<ArchivedFileReader> reader;
    for (std::size_t position = 0; position < share->reads.size(); ++position) {
        if (share->stop.stop_requested() || limit.isAbandoned()) return;
        limit.restart();
        const ProofRead& read = share->reads[position];
        ProofReadResult& result = share->results[position];
        if (read.root.empty()) {
            result.reading = readCopy(read.path, read.needsBodyHash);
        } else {
            if (!reader) reader.emplace(share->files, read.root);
            result.reading = reader->read(read.path, read.needsBodyHash, [&] { limit.restart(); });
        }
        result.wasTried = true;
        share->done.store(position + 1, std::memory_order_release);
    }
}

std::vector<std::shared_ptr<ProofLanes::Share>> ProofLanes::shared(std::vector<ProofRead> reads,
                                                                   const std::stop_token& stop) {
    std::vector<std::shared_ptr<Share>> shares;
    for (ProofRead& read : reads) {
        const bool isFull = shares.empty() || shares.back()->reads.size() == readsAtATime ||
                            shares.back()->reads.front().root != read.root;
        if (isFull) shares.push_back(std::make_shared<Share>(files_, stop));
        shares.back()->reads.push_back(std::move(read));
    }
    for (const auto& share : shares) share->results.resize(share->reads.size());
    return shares;
}

std::vector<ProofReadResult> ProofLanes::read(std::vector<ProofRead> reads, const std::stop_token& stop) {
    std::vector<std::shared_ptr<Share>> shares = shared(std::move(reads), stop);
    std::atomic<std::size_t> next = 0;
    const auto lane = [&](platform::TimeLimitedWorker& worker) {
        for (std::size_t at = next++; at < shares.size() && !stop.stop_requested(); at = next++) {
            const auto& share = shares[at];
            if (hungPlaces_.contains(share->reads.front().root)) continue;
            share->hasHung =
                !worker.run(limit_, [share](platform::JobLimit& limit) { readShare(share, limit); });
        }
    };
    {
        std::vector<std::jthread> lanes;
        for (std::size_t number = 0; number < std::min(workers_.size(), shares.size()); ++number)
            lanes.emplace_back([&lane, &worker = *workers_[number]] { lane(worker); });
    }
    std::vector<ProofReadResult> results;
    for (const auto& share : shares) {
        if (share->hasHung) hungPlaces_.insert(share->reads.front().root);
        const std::size_t done = share->done.load(std::memory_order_acquire);
        for (std::size_t position = 0; position < share->results.size(); ++position)
            results.push_back(position < done ? share->results[position] : ProofReadResult());
    }
    return results;
}

} // namespace corvane::archive
