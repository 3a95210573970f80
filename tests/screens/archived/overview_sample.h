// An overview of one account that is made up: years with a status and counts of their own.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "library/library_index.h"
#include "model/library/overview/overview_state.h"

namespace corvane::testing {

struct YearSketch {
    std::int64_t year = 0;
    ArchivedOverviewRowStatus status = ArchivedOverviewRowStatus::cleanable;
    bool awaitsProof = false;
    bool isPartlyGone = false; // another folder of it is in another state
    MailSum freeable{};
    MailSum removed{};
    MailSum unknown{};
    MailSum rest{}; // still in Mail, and not freeable
    std::int64_t serverAlone = 0;
};

// Each year has one folder, without its entries.
inline SharedOverview sampleOverview(const std::vector<YearSketch>& years, MailSum undated = {}) {
    ArchivedOverviewGroup group;
    group.key = "a";
    group.title = "a@a.example";
    group.undated = undated;
    ArchivedOverviewStats::Group stats;
    stats.mailNames = {{group.title, {}}};
    MailSum all = undated;
    for (const YearSketch& each : years) {
        MailSum whole = each.freeable;
        for (const MailSum* sum : {&each.removed, &each.unknown, &each.rest}) whole += *sum;
        all += whole;
        ArchivedOverviewGroup::FolderRow folder;
        folder.mailbox = "收件箱";
        folder.year = each.year;
        ArchivedOverviewGroup::YearGroup year;
        year.key = std::to_string(each.year);
        year.year = each.year;
        year.count = whole.count;
        year.bytes = whole.bytes;
        year.folders = {folder};
        group.years.push_back(year);
        ArchivedOverviewStats::Year state;
        state.status = each.status;
        state.isCleanable = each.status == ArchivedOverviewRowStatus::cleanable && !each.isPartlyGone;
        state.awaitsProof = each.awaitsProof;
        state.besides.serverAlone = each.serverAlone;
        state.freeable = each.freeable;
        state.removed = each.removed;
        state.unknown = each.unknown;
        state.folders = {{each.status, each.awaitsProof, {}}};
        stats.freeable += each.freeable;
        stats.years.push_back(state);
    }
    group.count = all.count;
    group.bytes = all.bytes;
    auto overview = std::make_shared<ArchivedOverview>();
    overview->groups = std::make_shared<const std::vector<ArchivedOverviewGroup>>(std::vector{group});
    overview->stats.groups.push_back(stats);
    overview->inputs.index = ArchiveLibraryIndex::make({});
    overview->inputs.presence = std::make_shared<const OriginalPresence>();
    return overview;
}

} // namespace corvane::testing
