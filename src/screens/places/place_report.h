// What is said below a place of archives: what its last verification or rebuild came to, file by file, or why
// its index has to be made anew. Values and pure functions, any thread.
#pragma once

#include <QString>
#include <QVariantList>

#include "model/archiving/place_jobs.h"
#include "model/library/archive_places.h"

namespace corvane {

// What stands below a place: what its last verification or rebuild came to, or what is wrong with it.
struct PlaceReport {
    QString kind; // of the banner control; empty for none
    QString title;
    QString line;
    QString dateText;
    QVariantList findings; // maps with `path` and `fault`; of many the first
    int findingsLeftOut = 0;
    bool offersRebuild = false;

    friend bool operator==(const PlaceReport&, const PlaceReport&) = default;
};

namespace screens {

// How the last job over the place ended.
PlaceReport endReport(const PlaceJobs::End& end);

// The place's mail is there and its index isn't, or is damaged.
bool lacksIndex(const ArchivePlace& place);

// Of a place that lacks its index.
PlaceReport needReport(const ArchivePlace& place);

// Why a file isn't as it was recorded.
QString faultText(ArchiveVerdict::Fault fault);

} // namespace screens

} // namespace corvane
