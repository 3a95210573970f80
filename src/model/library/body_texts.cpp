#include "model/library/body_texts.h"

#include <algorithm>
#include <utility>

#include <QPointer>
#include <fmt/format.h>

#include "mime/header_decoding.h"
#include "platform/directory.h"
#include "search/mail_search_index.h"

namespace corvane {

namespace {

// Some thousands of usual bodies; what the screens show at one time is far less.
constexpr std::size_t maximumCachedBytes = 32 << 20;

constexpr std::int64_t bytesWithHeader = 65536;

std::optional<std::string> bodyInIndexes(const SearchIndexTable& indexes, const SharedText& id) {
    for (const auto& [root, index] : indexes) {
        if (auto body = index->body(id)) return body;
    }
    return std::nullopt;
}

SharedTextSet idsInIndexes(const SearchIndexTable& indexes, const std::string& query) {
    SharedTextSet ids;
    for (const auto& [root, index] : indexes) ids.merge(index->search(query));
    return ids;
}

std::optional<std::string> ccOfFile(const platform::Platform& platform, const ArchivedEntry& entry) {
    const auto items = bodyIndexItems(entry.locationRootPath.str(), {entry.record});
    if (items.empty()) return std::nullopt;
    const std::string path = items.front().fileURL.path().str();
    if (platform.isCloudPlaceholder(path)) return std::nullopt;
    const auto start = platform::readFilePrefix(path, bytesWithHeader);
    return start ? mime::decodedHeaderField("cc", *start) : std::nullopt;
}

} // namespace

BodyTexts::BodyTexts(ModelContext& context, LibraryLoader& library, QObject* parent,
                     const BodyTextSource& texts)
  : QObject(parent)
  , context_(context)
  , library_(library)
  , texts_(texts ? texts : workerBodyTexts(context.platform, false))
  , upkeepTexts_(texts ? texts : workerBodyTexts(context.platform, true)) {}

BodyTexts::~BodyTexts() {
    cancelBodyTextIndex();
}

template <class Work, class Then>
void BodyTexts::inBackground(TaskPriority priority, Work work, Then then) {
    std::stop_source stop;
    context_.tasks.run(priority, stop,
                       [self = QPointer(this), &tasks = context_.tasks, stop, work = std::move(work),
                        then = std::move(then)]() mutable {
                           auto result = work(stop.get_token());
                           tasks.postToMain([self, then = std::move(then), result = std::move(result)] {
                               if (self) then(result);
                           });
                       });
}

void BodyTexts::indexedBody(const ArchivedEmailRecord& record, TextAnswer answer) {
    if (const auto known = indexedBodyMemoryCache_.find(record.id); known != indexedBodyMemoryCache_.end())
        return answer(known->second);
    if (library_.locationSearchIndexes()->empty()) return answer(std::nullopt);
    inBackground(
        TaskPriority::userInitiated,
        [indexes = library_.locationSearchIndexes(), id = record.id](const std::stop_token&) {
            return bodyInIndexes(*indexes, id);
        },
        [this, id = record.id, answer = std::move(answer)](const std::optional<std::string>& body) {
            storeBody(id, body);
            answer(body);
        });
}

void BodyTexts::storeBody(const SharedText& id, const std::optional<std::string>& body) {
    if (!body) return;
    if (cachedBytes_ + body->size() > maximumCachedBytes) {
        indexedBodyMemoryCache_.clear();
        cachedBytes_ = 0;
    }
    if (indexedBodyMemoryCache_.insert_or_assign(id, *body).second) cachedBytes_ += body->size();
}

void BodyTexts::prepareIndexedBody(const ArchivedEntry& entry, TextAnswer answer) {
    indexedBody(entry.record, [this, entry, answer = std::move(answer)](const auto& body) {
        const bool hasIndex = library_.locationSearchIndexes()->contains(entry.locationRootPath.view());
        if (body || !hasIndex) return answer(body);
        startPreparing(entry, answer);
    });
}

// Whoever asks while the worker reads the message gets the same answer.
void BodyTexts::startPreparing(const ArchivedEntry& entry, TextAnswer answer) {
    auto& waiting = preparing_[entry.id()];
    waiting.push_back(std::move(answer));
    if (waiting.size() > 1) return;
    inBackground(
        TaskPriority::utility,
        [indexing = BodyIndexing(context_.support, texts_), entry](const std::stop_token& stop) {
            return indexing.prepareBody(entry.locationRootPath.str(), entry.record, stop);
        },
        [this, entry](const std::optional<std::string>& body) { finishPreparing(entry, body); });
}

void BodyTexts::finishPreparing(const ArchivedEntry& entry, const std::optional<std::string>& body) {
    storeBody(entry.record.id, body);
    auto waiting = preparing_.extract(entry.id());
    for (const TextAnswer& answer : waiting.mapped()) answer(body);
}

void BodyTexts::ccRecipients(const ArchivedEntry& entry, TextAnswer answer) {
    const auto& recorded = entry.record.ccRecipients;
    if (recorded && !recorded->empty()) return answer(recorded->str());
    if (const auto known = ccRecipientsCache_.find(entry.record.id); known != ccRecipientsCache_.end())
        return answer(known->second.empty() ? std::nullopt : std::optional(known->second));
    inBackground(
        TaskPriority::userInitiated,
        [&platform = context_.platform, entry](const std::stop_token&) { return ccOfFile(platform, entry); },
        [this, id = entry.record.id, answer = std::move(answer)](const std::optional<std::string>& text) {
            ccRecipientsCache_[id] = text.value_or("");
            answer(text);
        });
}

void BodyTexts::searchArchive(std::string query, IDsAnswer answer) {
    if (library_.locationSearchIndexes()->empty()) return answer({});
    inBackground(
        TaskPriority::userInitiated,
        [indexes = library_.locationSearchIndexes(), query = std::move(query)](const std::stop_token&) {
            return idsInIndexes(*indexes, query);
        },
        [answer = std::move(answer)](const SharedTextSet& ids) { answer(ids); });
}

BodyIndexRequest BodyTexts::requestForAllLocations(bool force) const {
    BodyIndexRequest request;
    request.force = force;
    for (const ArchiveLocation& location : library_.archiveLocations()) {
        request.roots.push_back(location.rootPath);
        request.total += location.count;
    }
    return request;
}

void BodyTexts::rebuildBodyTextIndex(bool force) {
    BodyIndexRequest request = requestForAllLocations(force);
    if (!request.roots.empty()) rebuildBodyTextIndex(std::move(request));
}

void BodyTexts::rebuildBodyTextIndex(BodyIndexRequest request) {
    waitingIndexing_.push_back(std::move(request));
    if (!runningIndexing_) startNextIndexing();
}

void BodyTexts::startNextIndexing() {
    if (waitingIndexing_.empty()) return;
    runningIndexing_ = std::move(waitingIndexing_.front());
    waitingIndexing_.pop_front();
    setProgress(EmailArchiveProgress{0, runningIndexing_->total, std::nullopt, "正在准备正文预览..."});
    indexStop_ = std::stop_source();
    context_.tasks.run(
        TaskPriority::utility, indexStop_,
        [self = QPointer(this), &tasks = context_.tasks, stop = indexStop_.get_token(),
         request = *runningIndexing_, indexing = BodyIndexing(context_.support, upkeepTexts_)] {
            const auto report = [&](std::int64_t done, std::int64_t total) {
                tasks.postToMain([self, done, total] {
                    if (!self) return;
                    self->setProgress(EmailArchiveProgress{
                        done, total, std::nullopt, fmt::format("正在准备正文预览… {}/{}", done, total)});
                });
            };
            std::int64_t indexed = 0;
            for (const std::string& root : request.roots) {
                if (stop.stop_requested()) break;
                indexed += indexing.rebuildSearchIndex(root, request.force, report, stop);
            }
            tasks.postToMain([self, indexed] {
                if (self) self->finishIndexing(indexed);
            });
        });
}

void BodyTexts::finishIndexing(std::int64_t indexed) {
    const BodyIndexRequest request = *std::exchange(runningIndexing_, std::nullopt);
    ++epoch_;
    if (request.force) {
        indexedBodyMemoryCache_.clear();
        cachedBytes_ = 0;
    }
    setProgress(std::nullopt);
    Q_EMIT bodyIndexFinished(indexed);
    if (request.reloadWhenDone) Q_EMIT libraryReloadWanted();
    if (!runningIndexing_) startNextIndexing();
}

bool BodyTexts::isRepairing() const {
    return (runningIndexing_ && runningIndexing_->isRepair) ||
           std::ranges::any_of(waitingIndexing_, &BodyIndexRequest::isRepair);
}

void BodyTexts::scheduleBodyTextIndexRepair(const std::vector<std::string>& roots, std::int64_t total,
                                            const std::string& signature) {
    if (!repairsAutomatically_ || total < 1 || roots.empty() || isRepairing()) return;
    if (signature == lastBodyIndexRepairSignature_) return;
    lastBodyIndexRepairSignature_ = signature;
    rebuildBodyTextIndex({.roots = roots, .total = total, .isRepair = true});
}

void BodyTexts::cancelBodyTextIndex() {
    waitingIndexing_.clear();
    if (indexStop_.stop_possible()) indexStop_.request_stop();
}

void BodyTexts::setProgress(std::optional<EmailArchiveProgress> progress) {
    progress_ = std::move(progress);
    Q_EMIT bodyIndexProgressChanged();
}

} // namespace corvane
