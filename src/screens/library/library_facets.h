// What the library's filters and its strip of years offer: mailboxes with counts, and mail a year. Pure, any
// thread; linear in the entries, so made in the background.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "library/library_list.h"

namespace corvane {

struct YearOfMail {
    std::int64_t year = 0;
    std::int64_t count = 0;
    std::int64_t bytes = 0;

    friend bool operator==(const YearOfMail&, const YearOfMail&) = default;
};

struct MailboxOption {
    std::string mailbox;
    std::int64_t count = 0;

    friend bool operator==(const MailboxOption&, const MailboxOption&) = default;
};

struct LibraryFacets {
    std::int64_t bytes = 0; // of the list
    // Within all filters but the span of years; without gaps between the first and the last.
    std::vector<YearOfMail> years;
    std::int64_t undated = 0;
    std::vector<MailboxOption> mailboxes; // within all filters but their own; most mail first

    static LibraryFacets of(const LibraryList& list);
};

} // namespace corvane
