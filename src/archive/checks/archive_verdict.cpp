#include "archive/checks/archive_verdict.h"

#include <algorithm>
#include <string_view>
#include <unordered_set>

namespace corvane {

ArchiveVerdict verdictOf(const ArchiveVerification& verification) {
    using enum ArchiveVerdict::Fault;
    ArchiveVerdict verdict{verification.checked, verification.checked, verification.unchecked, {}};
    std::unordered_set<std::string_view> seen;
    const auto add = [&](const std::vector<std::string>& paths, ArchiveVerdict::Fault fault) {
        for (const std::string& path : paths) {
            if (seen.insert(path).second) verdict.findings.push_back({path, fault});
        }
    };
    add(verification.missing, missing);
    add(verification.altered, altered);
    add(verification.sizeMismatch, otherSize);
    add(verification.identityMismatch, otherMail);
    add(verification.unreadable, unreadable);
    add(verification.duplicatePaths, repeatedPath);
    verdict.intact =
        std::max<std::int64_t>(0, verdict.checked - static_cast<std::int64_t>(verdict.findings.size()));
    // No record is the worse for a file that none names.
    add(verification.unindexed, unrecorded);
    return verdict;
}

} // namespace corvane
