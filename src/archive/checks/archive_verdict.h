// What a verification comes to for a person: how many mails are as they were recorded, and which files
// aren't, each once with the gravest of its faults. A value; pure functions, any thread.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "archive/checks/archive_verification.h"

namespace corvane {

struct ArchiveVerdict {
    // The gravest first.
    enum class Fault { missing, altered, otherSize, otherMail, unreadable, repeatedPath, unrecorded };

    struct Finding {
        std::string path; // relative to the root
        Fault fault = Fault::missing;

        friend bool operator==(const Finding&, const Finding&) = default;
    };

    std::int64_t checked = 0; // records
    // Of these, the ones against which nothing was found. Never too many: a folder that couldn't be read
    // counts as one of them.
    std::int64_t intact = 0;
    std::int64_t withoutHash = 0; // of which size and header alone could be compared
    std::vector<Finding> findings;

    friend bool operator==(const ArchiveVerdict&, const ArchiveVerdict&) = default;
};

ArchiveVerdict verdictOf(const ArchiveVerification& verification);

} // namespace corvane
