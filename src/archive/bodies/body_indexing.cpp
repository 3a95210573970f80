#include "archive/bodies/body_indexing.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <span>
#include <unordered_map>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <sys/stat.h>

#include "archive/archive_root.h"
#include "archive/bodies/batch_extraction.h"
#include "platform/files/cloud_content.h"
#include "platform/files/layers/file_layer.h"
#include "platform/paths.h"
#include "platform/stop_watch.h"
#include "platform/threads/limited_answer.h"
#include "records/archive_files/archive_index_file.h"
#include "records/logs/console_log.h"
#include "records/texts/preview_placeholders.h"
#include "search/mail_search_index.h"
#include "text/trim.h"
#include "worker/mail_worker_client.h"

namespace corvane {

namespace {

// The ids that need no work, after those whose body came out empty last time were removed to be tried again.
// An id that has both an empty row and a full one is finished, and its rows stay: the full one answers for
// it. Absent when the index can't be read.
std::optional<SharedTextSet> finishedIDs(const EmailArchiveIndex& archive, MailSearchIndex& index) {
    auto states = index.bodyStates();
    if (!states) return std::nullopt;
    for (const ArchivedEmailRecord& record : archive.records) {
        if (states->withoutBody.contains(record.id) && !states->withBody.contains(record.id))
            index.remove(record.id);
    }
    return std::move(states->withBody);
}

// Whichever record comes first has the id.
std::vector<ArchivedEmailRecord> unfinishedRecords(const EmailArchiveIndex& archive,
                                                   SharedTextSet finishedOrSeen) {
    std::vector<ArchivedEmailRecord> records;
    for (const ArchivedEmailRecord& record : archive.records) {
        if (finishedOrSeen.insert(record.id).second) records.push_back(record);
    }
    return records;
}

// A place that doesn't answer has nothing to index.
std::vector<BodyIndexItem> itemsWithinLimit(const std::string& archiveRoot,
                                            std::vector<ArchivedEmailRecord> records,
                                            const std::stop_token& stop) {
    using Items = std::vector<BodyIndexItem>;
    auto items = platform::limitedAnswer<Items>(
        platform::placeLimit,
        [archiveRoot, records = std::move(records)](platform::JobLimit& limit) {
            return bodyIndexItems(archiveRoot, records, [&] { limit.restart(); });
        },
        stop);
    if (!items && !stop.stop_requested()) consoleLine(fmt::format("[index] 没有响应：{}", archiveRoot));
    return std::move(items).value_or(Items());
}

std::optional<EmailArchiveIndex> indexWithinLimit(const std::string& archiveRoot,
                                                  const std::stop_token& stop) {
    using Index = std::optional<EmailArchiveIndex>;
    auto index = platform::limitedAnswer<Index>(
        platform::placeLimit,
        [archiveRoot](platform::JobLimit& limit) -> Index {
            ArchiveIndexReading reading = readArchiveIndexFile(
                platform::posixFileLayer(), platform::joinPath(archiveRoot, archiveIndexFileName),
                [&limit] { limit.restart(); });
            if (reading.state != ArchiveIndexReading::State::usable) return std::nullopt;
            return std::move(reading.index);
        },
        stop);
    if (!index && !stop.stop_requested()) consoleLine(fmt::format("[index] 没有响应：{}", archiveRoot));
    return index ? std::move(*index) : std::nullopt;
}

} // namespace

BodyTextSource workerBodyTexts(const platform::Platform& platform, bool isUpkeep) {
    constexpr std::int64_t maximumBytesOfFile = 2097152;
    MailWorkerClient client(platform);
    client.setUpkeep(isUpkeep);
    return [client](const std::vector<FileURL>& files, const std::stop_token& stop) {
        return client.bodyTextBatch(files, maximumBytesOfFile, stop);
    };
}

SearchIndexRow searchIndexRow(const ArchivedEmailRecord& record, std::string body) {
    return {record.id,
            record.subject,
            record.sender,
            record.recipients,
            fmt::format("{}", fmt::join(record.attachmentNames, " ")),
            std::move(body)};
}

namespace {

bool hasContent(const std::string& path) {
    struct stat status{};
    return ::lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && !platform::isOnlyInCloud(status);
}

} // namespace

std::vector<BodyIndexItem> bodyIndexItems(const std::string& archiveRoot,
                                          const std::vector<ArchivedEmailRecord>& records,
                                          const std::function<void()>& onStep) {
    archive::ArchiveRoot root(archiveRoot);
    std::unordered_map<std::string, bool> folders; // those looked at; true below the root
    std::vector<BodyIndexItem> items;
    for (const ArchivedEmailRecord& record : records) {
        if (onStep) onStep();
        if (!platform::isSafeRelativePath(record.emlRelativePath)) continue;
        const std::string path = root.at(record.emlRelativePath);
        const auto [folder, isNew] = folders.try_emplace(std::string(platform::parentPath(path)));
        if (isNew) folder->second = root.holdsFolder(folder->first);
        if (folder->second && hasContent(path)) items.push_back({record, FileURL(path)});
    }
    return items;
}

std::int64_t BodyIndexing::rebuildSearchIndex(const std::string& archiveRoot, bool force,
                                              const BodyIndexProgress& progress,
                                              const std::stop_token& stop) const {
    const auto archive = indexWithinLimit(archiveRoot, stop);
    if (!archive) return 0;
    auto index = MailSearchIndex::openOrReset(support_, archiveRoot);
    if (!index) return 0;
    const std::int64_t handed = fill(archiveRoot, *archive, *index, force, progress, stop);
    if (!index->isDamaged()) return handed;
    consoleLine(fmt::format("[index] 正文索引已损坏，重新建立：{}", archiveRoot));
    index = MailSearchIndex::openReset(support_, archiveRoot);
    return index ? fill(archiveRoot, *archive, *index, false, progress, stop) : 0;
}

std::optional<std::string> BodyIndexing::prepareBody(const std::string& archiveRoot,
                                                     const ArchivedEmailRecord& record,
                                                     const std::stop_token& stop) const {
    const auto index = MailSearchIndex::open(support_, archiveRoot);
    if (!index) return std::nullopt;
    if (auto body = index->body(record.id)) return body;
    const auto items = itemsWithinLimit(archiveRoot, {record}, stop);
    if (items.empty()) return std::nullopt;
    BodyTextByPath texts;
    try {
        texts = texts_({items.front().fileURL}, stop);
    } catch (const std::exception&) { // the library shows what else it knows
        return std::nullopt;
    }
    const std::string_view text = text::trimWhitespaceAndNewlines(texts[items.front().fileURL.path()]);
    if (text.empty() || text == emptyBodyPreviewPlaceholder) return std::nullopt;
    index->bulkInsert(std::vector{searchIndexRow(record, std::string(text))});
    return std::string(text);
}

std::int64_t BodyIndexing::fill(const std::string& archiveRoot, const EmailArchiveIndex& archive,
                                MailSearchIndex& index, bool force, const BodyIndexProgress& progress,
                                const std::stop_token& stop) const {
    if (force) index.clear();
    auto finished = force ? SharedTextSet() : finishedIDs(archive, index);
    if (!finished || index.isDamaged()) return 0;
    const auto items = itemsWithinLimit(archiveRoot, unfinishedRecords(archive, std::move(*finished)), stop);
    if (items.empty()) {
        progress(0, 0);
        return 0;
    }
    indexBodies(items, index, messagesOfBatch, progress, stop);
    return std::ssize(items);
}

void BodyIndexing::indexBodies(const std::vector<BodyIndexItem>& items, MailSearchIndex& index,
                               std::size_t batchSize, const BodyIndexProgress& progress,
                               const std::stop_token& stop) const {
    const auto known = index.indexedIDs();
    if (!known) return;
    std::vector<const BodyIndexItem*> pending;
    for (const BodyIndexItem& item : items) {
        if (!known->contains(item.record.id)) pending.push_back(&item);
    }
    const std::int64_t total = std::ssize(items);
    std::int64_t done = total - std::ssize(pending);
    progress(done, total);
    if (pending.empty()) {
        consoleLine(fmt::format("[index] 全部已索引,跳过 · 共 {} 封", total));
        return;
    }
    const platform::StopWatch watch;
    double writeSeconds = 0;
    archive::BatchExtraction extraction(pending, batchSize, texts_, stop);
    while (auto rows = extraction.nextRows()) {
        const platform::StopWatch writeWatch;
        // Another process, or the library for a message it shows, may have been here meanwhile.
        const std::int64_t count = std::ssize(*rows);
        std::erase_if(*rows, [&](const SearchIndexRow& row) { return index.ftsRowID(row.id).has_value(); });
        const std::size_t written = index.bulkInsert(*rows);
        writeSeconds += writeWatch.seconds();
        // A full disk or a lock that stays: extracting the rest would be for nothing.
        if (index.isDamaged() || (written == 0 && !rows->empty())) break;
        done += count;
        progress(done, total);
    }
    consoleLine(fmt::format("[index] 并行提取+写入 {:.1f}s(其中写 FTS {:.1f}s) · 共 {} 封 · 并发 {}",
                            watch.seconds(), writeSeconds, pending.size(), extraction.concurrency()));
}

} // namespace corvane
