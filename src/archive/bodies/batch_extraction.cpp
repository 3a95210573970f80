#include "archive/bodies/batch_extraction.h"

#include <algorithm>
#include <exception>
#include <string>

namespace corvane::archive {

namespace {

// Small machines keep a processor for the collector and for whoever sits in front of them.
std::size_t suitableConcurrency() {
    const auto processors = static_cast<std::ptrdiff_t>(std::thread::hardware_concurrency());
    return static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(processors - 1, 2, 4));
}

} // namespace

BatchExtraction::BatchExtraction(const std::vector<const BodyIndexItem*>& items, std::size_t batchSize,
                                 const BodyTextSource& texts, std::stop_token stop)
  : items_(items)
  , batchSize_(std::max<std::size_t>(batchSize, 1))
  , texts_(texts)
  , stop_(std::move(stop))
  , concurrency_(suitableConcurrency()) {
    const std::size_t batches = (items.size() + batchSize_ - 1) / batchSize_;
    for (std::size_t count = std::min(batches, concurrency_); count > 0; --count)
        threads_.emplace_back([this] { work(); });
}

BatchExtraction::~BatchExtraction() {
    {
        const text::MutexLock lock(mutex_);
        next_ = items_.size();
        uncollected_ = 0;
        changed_.notifyAll();
    }
    threads_.clear();
}

std::optional<std::vector<SearchIndexRow>> BatchExtraction::nextRows() {
    text::MutexLock lock(mutex_);
    const auto isReady = [&]() REQUIRES(mutex_) {
        return !finished_.empty() || (next_ >= items_.size() && uncollected_ == 0);
    };
    changed_.wait(lock, stop_, isReady);
    // What was extracted while the stop came may lack texts only because of it.
    if (stop_.stop_requested() || finished_.empty()) return std::nullopt;
    Rows rows = std::move(finished_.front());
    finished_.pop_front();
    --uncollected_;
    changed_.notifyAll();
    return rows;
}

void BatchExtraction::work() {
    while (const auto first = nextBatch()) {
        Rows rows = extract(*first);
        const text::MutexLock lock(mutex_);
        finished_.push_back(std::move(rows));
        changed_.notifyAll();
    }
}

std::optional<std::size_t> BatchExtraction::nextBatch() {
    text::MutexLock lock(mutex_);
    changed_.wait(lock, stop_,
                  [&]() REQUIRES(mutex_) { return next_ >= items_.size() || uncollected_ < concurrency_; });
    if (stop_.stop_requested() || next_ >= items_.size()) return std::nullopt;
    ++uncollected_;
    const std::size_t first = next_;
    next_ = std::min(items_.size(), first + batchSize_);
    return first;
}

BodyTextByPath BatchExtraction::textsOf(const std::vector<FileURL>& files) const {
    try {
        return texts_(files, stop_);
    } catch (const std::exception&) {
        return {}; // the messages can be found by their other fields, and the next run tries again
    }
}

BatchExtraction::Rows BatchExtraction::extract(std::size_t first) const {
    const std::size_t end = std::min(items_.size(), first + batchSize_);
    std::vector<FileURL> files;
    for (std::size_t i = first; i < end; ++i) files.push_back(items_[i]->fileURL);
    const BodyTextByPath texts = textsOf(files);
    Rows rows;
    for (std::size_t i = first; i < end; ++i) {
        const auto text = texts.find(items_[i]->fileURL.path());
        std::string body = text == texts.end() ? std::string() : text->second;
        rows.push_back(searchIndexRow(items_[i]->record, std::move(body)));
    }
    return rows;
}

} // namespace corvane::archive
