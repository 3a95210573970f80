// How a year or a folder of the archived mail looks: its word, its glyph and its kind of cell. Pure
// functions, any thread.
#pragma once

#include <cstdint>
#include <span>

#include <QString>

#include "library/overview/archived_overview.h"

namespace corvane {

// What is known of originals at this moment. Anything but `known` shows no status of a year.
enum class OriginalKnowledge {
    loading,     // the archives are still being read
    checking,    // Mail is being asked
    unavailable, // Mail couldn't be asked
    unchecked,   // nobody has asked Mail
    scanning,    // the mail on this machine is being read anew
    noMail,      // nobody has read the mail on this machine
    partial,     // a scan didn't come to its end
    waiting,     // what was read is being put together
    known,
};

struct YearStatus {
    QString key; // of the cell: "cleanable", "incomplete", "awaiting", "server", "pending", "completed",
                 // "checking", "unavailable", "unchecked"
    QString symbol;
    QString label;
    QString tone; // of a chip

    friend bool operator==(const YearStatus&, const YearStatus&) = default;
};

namespace screens {

// `awaitsProof`: incomplete for no other reason than that originals still have to be compared.
YearStatus yearStatus(OriginalKnowledge knowledge, ArchivedOverviewRowStatus status, bool awaitsProof);

// Of a year: cleanable only when it frees something, which it doesn't while a folder of it is in another
// state.
YearStatus yearStatus(OriginalKnowledge knowledge, const ArchivedOverviewStats::Year& year);

// "2012 – 2017、2019" for years in rising order; more than four spans end in "等 9 个".
QString yearSpans(std::span<const std::int64_t> years);

} // namespace screens

} // namespace corvane
