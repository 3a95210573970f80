#include "model/library/body_texts.h"

#include <algorithm>
#include <map>
#include <utility>

#include <fmt/format.h>

#include "archive/bodies/cc_line.h"
#include "platform/threads/limited_answer.h"
#include "search/mail_search_index.h"

namespace corvane {

namespace {

// Some thousands of usual bodies; what the screens show at one time is far less.
constexpr std::size_t maximumCachedBytes = 32 << 20;

std::optional<std::string> bodyInIndexes(const SearchIndexTable& indexes, const SharedText& id) {
    for (const auto& [root, index] : indexes) {
        if (auto body = index->body(id)) return body;
    }
    return std::nullopt;
}

// Absence is an answer here.
struct FoundText {
    std::optional<std::string> text;
};

struct BodyQuestion {
    SharedSearchIndexes indexes;
    SharedText id; // of the record
};

struct Preparation {
    BodyIndexing indexing;
    ArchivedEntry entry;
};

struct CcQuestion {
    const platform::Platform& platform;
    ArchivedEntry entry;
};

struct SearchQuestion {
    SharedSearchIndexes indexes;
    std::map<std::string, std::int64_t> counts; // of mail, by root
    std::vector<std::string> rootsWithout;      // one that can be opened
    std::string query;
};

struct IndexingJob {
    BodyIndexing indexing;
    std::vector<std::string> roots;
    bool force = false;
};

// The number of messages handled, of those until a stop.
std::int64_t fillIndexes(const IndexingJob& job, const ReportingTask<EmailArchiveProgress>& task) {
    const auto report = [&](std::int64_t done, std::int64_t total) {
        task.report({done, total, std::nullopt, fmt::format("正在准备正文预览… {}/{}", done, total)});
    };
    std::int64_t indexed = 0;
    for (const std::string& root : job.roots) {
        if (task.isCancelled()) break;
        indexed += job.indexing.rebuildSearchIndex(root, job.force, report, task.stopToken());
    }
    return indexed;
}

} // namespace

BodyTexts::BodyTexts(ModelContext& context, LibraryLoader& library, QObject* parent,
                     const BodyTextSource& texts)
  : QObject(parent)
  , context_(context)
  , library_(library)
  , texts_(texts ? texts : workerBodyTexts(context.platform, false))
  , upkeepTexts_(texts ? texts : workerBodyTexts(context.platform, true))
  , answerTasks_(context.tasks)
  , indexTask_(context.tasks) {}

void BodyTexts::indexedBody(const ArchivedEmailRecord& record, TextAnswer answer) {
    if (const auto known = indexedBodyMemoryCache_.find(record.id); known != indexedBodyMemoryCache_.end())
        return answer(known->second);
    if (library_.locationSearchIndexes()->empty()) return answer(std::nullopt);
    answerTasks_.start(
        TaskPriority::userInitiated, BodyQuestion{library_.locationSearchIndexes(), record.id},
        [](const BodyQuestion& asked, const TaskHandle&) {
            return FoundText{bodyInIndexes(*asked.indexes, asked.id)};
        },
        [this, id = record.id, answer = std::move(answer)](const FoundText& body) {
            storeBody(id, body.text);
            answer(body.text);
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
    answerTasks_.start(
        TaskPriority::utility, Preparation{BodyIndexing(context_.support, texts_), entry},
        [](const Preparation& job, const TaskHandle& task) {
            return FoundText{job.indexing.prepareBody(job.entry.locationRootPath.str(), job.entry.record,
                                                      task.stopToken())};
        },
        [this, entry](const FoundText& body) { finishPreparing(entry, body.text); });
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
    answerTasks_.start(
        TaskPriority::userInitiated, CcQuestion{context_.platform, entry},
        [](const CcQuestion& asked, const TaskHandle& task) {
            using Line = std::optional<std::string>;
            auto line = platform::limitedAnswer<Line>(
                platform::placeLimit,
                [entry = asked.entry, &platform = asked.platform](platform::JobLimit&) {
                    return ccLineOfFile(platform, entry);
                },
                task.stopToken());
            return FoundText{std::move(line).value_or(std::nullopt)};
        },
        [this, id = entry.record.id, answer = std::move(answer)](const FoundText& cc) {
            // A file that couldn't be read is asked again.
            if (cc.text) ccRecipientsCache_[id] = *cc.text;
            answer(cc.text && !cc.text->empty() ? cc.text : std::nullopt);
        });
}

void BodyTexts::searchArchive(std::string query, SearchAnswer answer) {
    SearchQuestion question{library_.locationSearchIndexes(), {}, {}, std::move(query)};
    for (const ArchiveLocation& location : library_.archiveLocations()) {
        question.counts.emplace(location.rootPath, location.count);
        if (!question.indexes->contains(location.rootPath))
            question.rootsWithout.push_back(location.rootPath);
    }
    answerTasks_.start(
        TaskPriority::userInitiated, std::move(question),
        [](const SearchQuestion& asked, const TaskHandle&) {
            ArchiveSearchResult found = searchIndexes(*asked.indexes, asked.counts, asked.query);
            found.unreadableRoots.insert(found.unreadableRoots.end(), asked.rootsWithout.begin(),
                                         asked.rootsWithout.end());
            return found;
        },
        std::move(answer));
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
    indexTask_.startReporting<EmailArchiveProgress>(
        TaskPriority::utility,
        IndexingJob{BodyIndexing(context_.support, upkeepTexts_), runningIndexing_->roots,
                    runningIndexing_->force},
        &fillIndexes, [this](EmailArchiveProgress progress) { setProgress(std::move(progress)); },
        [this](std::int64_t indexed) { finishIndexing(indexed); });
}

void BodyTexts::finishIndexing(std::int64_t indexed) {
    const BodyIndexRequest request = *std::exchange(runningIndexing_, std::nullopt);
    if (request.force) {
        indexedBodyMemoryCache_.clear();
        cachedBytes_ = 0;
    }
    setProgress(std::nullopt);
    Q_EMIT bodyIndexFinished(indexed);
    if (request.reloadWhenDone) Q_EMIT libraryReloadWanted();
    if (!runningIndexing_) startNextIndexing();
}

// What waits looks at the archives only when it begins.
bool BodyTexts::isRepairWaiting(const std::vector<std::string>& roots) const {
    return std::ranges::any_of(waitingIndexing_, [&](const BodyIndexRequest& request) {
        return request.isRepair && request.roots == roots;
    });
}

void BodyTexts::scheduleBodyTextIndexRepair(const std::vector<std::string>& roots, std::int64_t total,
                                            const std::string& signature) {
    if (!repairsAutomatically_ || total < 1 || roots.empty()) return;
    if (signature == lastBodyIndexRepairSignature_) return;
    lastBodyIndexRepairSignature_ = signature;
    if (isRepairWaiting(roots)) return;
    rebuildBodyTextIndex({.roots = roots, .total = total, .isRepair = true});
}

void BodyTexts::cancelBodyTextIndex() {
    waitingIndexing_.clear();
    indexTask_.requestStop();
}

void BodyTexts::setProgress(std::optional<EmailArchiveProgress> progress) {
    progress_ = std::move(progress);
    Q_EMIT bodyIndexProgressChanged();
}

} // namespace corvane
