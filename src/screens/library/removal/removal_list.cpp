#include "screens/library/removal/removal_list.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <set>
#include <unordered_map>
#include <utility>

#include <QStringList>
#include <QVariantMap>

#include "records/archived/counted_bytes.h"
#include "records/texts/formatters.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

using Status = ArchivedOriginalPresenceStatus;

// Of those that failed only.
std::unordered_map<std::string, const ArchivedEntry*>
failedEntries(const RemovalList& list, const std::vector<ArchiveRemovalEnd::Failure>& failures) {
    std::unordered_map<std::string, const ArchivedEntry*> failed;
    for (const auto& failure : failures) failed.emplace(failure.entryID, nullptr);
    for (const ArchivedEntry& entry : *list.entries) {
        if (const auto found = failed.find(entry.id()); found != failed.end()) found->second = &entry;
    }
    return failed;
}

// What an earlier run of the program has found is no reason to ask once only.
Status statusNow(const OriginalPresence& presence, const ArchivedEntry& entry) {
    return presence.isOfEarlierRun ? Status::unknown : presence.statusOf(entry);
}

} // namespace

Status RemovalList::statusAt(std::size_t position) const {
    if (position < missing) return Status::missing;
    return position < missing + unknown ? Status::unknown : Status::present;
}

RemovalList removalList(const LibraryList& list, const std::vector<EntryPosition>& positions,
                        const OriginalPresence& presence) {
    RemovalList made;
    auto entries = std::make_shared<std::vector<ArchivedEntry>>();
    entries->reserve(positions.size());
    std::set<std::string, std::less<>> roots;
    for (const Status status : {Status::missing, Status::unknown, Status::present}) {
        for (const EntryPosition position : positions) {
            const ArchivedEntry& entry = list.index().entry(position);
            if (statusNow(presence, entry) != status) continue;
            entries->push_back(entry);
            made.bytes += countedBytes(entry.record);
            if (!roots.contains(entry.locationRootPath.view())) roots.insert(entry.locationRootPath.str());
        }
        if (status == Status::missing) made.missing = entries->size();
        if (status == Status::unknown) made.unknown = entries->size() - made.missing;
    }
    made.roots.assign(roots.begin(), roots.end());
    made.entries = std::move(entries);
    return made;
}

RemovalReport removalReport(const RemovalList& list,
                            const std::vector<ArchiveRemovalEnd::Failure>& failures) {
    RemovalReport report;
    QStringList lines;
    const auto failed = failedEntries(list, failures);
    for (const auto& failure : failures) {
        const ArchivedEntry* entry = failed.at(failure.entryID);
        if (failure.isRecordGone) ++report.recordsGone;
        if (entry == nullptr) continue;
        report.failedBytes += countedBytes(entry->record);
        if (report.root.empty()) report.root = entry->locationRootPath.str();
        lines += screens::wholeText(entry->record.subject) + u'\t' + screens::wholeText(failure.reason);
        if (std::cmp_greater_equal(report.failures.size(), mostRemovalsShown)) continue;
        report.failures.append(QVariantMap{
            {QStringLiteral("subject"), screens::shownLine(entry->record.subject)},
            {QStringLiteral("sizeText"), screens::wholeText(formatByteCount(entry->record.sizeBytes))},
            {QStringLiteral("reason"), screens::shownLine(failure.reason)},
        });
    }
    report.lines = lines.join(u'\n');
    return report;
}

} // namespace corvane
