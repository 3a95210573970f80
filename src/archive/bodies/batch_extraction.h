// Extracts the texts of messages in batches, a few at a time, and hands the finished ones to one collector in
// the order of their ends. A batch begins only when an earlier one was collected, so that a slow collector
// bounds the memory.
#pragma once

#include <cstddef>
#include <deque>
#include <optional>
#include <stop_token>
#include <thread>
#include <vector>

#include "archive/bodies/body_indexing.h"
#include "search/mail_search_index.h"
#include "text/mutex.h"

namespace corvane::archive {

// Made, asked and destroyed on one thread. The items and the source have to outlive it.
class BatchExtraction {
  public:
    BatchExtraction(const std::vector<const BodyIndexItem*>& items, std::size_t batchSize,
                    const BodyTextSource& texts, std::stop_token stop);
    BatchExtraction(const BatchExtraction&) = delete;
    BatchExtraction& operator=(const BatchExtraction&) = delete;

    // Waits for the batches at work; those of a stopped extraction end early.
    ~BatchExtraction();

    // Batches at work at one time.
    [[nodiscard]] std::size_t concurrency() const { return concurrency_; }

    // The rows of the next finished batch. Absent after the last, or after a stop. A batch that failed has
    // rows with empty bodies.
    std::optional<std::vector<SearchIndexRow>> nextRows();

  private:
    using Rows = std::vector<SearchIndexRow>;

    void work();
    [[nodiscard]] std::optional<std::size_t> nextBatch();
    [[nodiscard]] BodyTextByPath textsOf(const std::vector<FileURL>& files) const;
    [[nodiscard]] Rows extract(std::size_t first) const;

    const std::vector<const BodyIndexItem*>& items_;
    const std::size_t batchSize_;
    const BodyTextSource& texts_;
    std::stop_token stop_;
    const std::size_t concurrency_;
    text::Mutex mutex_;
    text::StoppableCondition changed_;
    std::size_t next_ GUARDED_BY(mutex_) = 0;        // first item of the next batch
    std::size_t uncollected_ GUARDED_BY(mutex_) = 0; // batches begun and not yet handed out
    std::deque<Rows> finished_ GUARDED_BY(mutex_);
    std::vector<std::jthread> threads_; // last: they use all of the above
};

} // namespace corvane::archive
