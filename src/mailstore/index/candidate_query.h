// The question to the index that lists the messages of a scan. Pure.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace corvane {

struct CandidateFilter {
    std::optional<std::int64_t> maximumYear; // in UTC; absent for every year
    bool requireIndexedAttachments = false;
    std::vector<std::string> accountURLPrefixes; // empty for every account
};

namespace mailstore {

// Rows of the table of messages, both ends included.
struct RowIDRange {
    std::int64_t first = 0;
    std::int64_t last = 0;

    friend bool operator==(const RowIDRange&, const RowIDRange&) = default;
};

// The SQL that gives the candidates, newest first; `hasMessageIDHeader` says whether the store has the
// column of that name. Throws MailIndexQueryError (queryFailed) for a year that no calendar has an end of.
std::string candidateQuery(const CandidateFilter& filter, bool hasMessageIDHeader);

// The same for a part of the messages, ascending by ROWID.
std::string candidateQuery(const CandidateFilter& filter, bool hasMessageIDHeader, const RowIDRange& range);

} // namespace mailstore

} // namespace corvane
