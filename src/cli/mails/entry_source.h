// Where commands that are about single mails have them from: the digests of the archives, which is quick, or
// the library of the model. Both give the same answers.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/session.h"
#include "locations/loading/archive_digest.h"
#include "records/archived/archive_records.h"
#include "text/shared_text.h"

namespace corvane::cli {

class EntrySource {
  public:
    struct FoundIDs {
        std::vector<SharedText> ids;               // of records, sorted, each once
        std::vector<std::string> rootsNotAsked;    // of archives that couldn't be searched
        std::vector<std::string> rootsNotPrepared; // of those whose mail isn't in their index yet
    };

    virtual ~EntrySource() = default;

    // The mails that the name fits, as EntryHandles::find() tells; empty without one.
    virtual std::vector<ArchivedEntry> find(const std::string& name) = 0;

    // The records of all archives that hold the text.
    virtual FoundIDs search(const std::string& text) = 0;

    using Visit = std::function<void(ArchivedEntry)>;

    // Visits the mails with those record ids, the newest first and those without a date last; not more than
    // `limit`.
    virtual void visitNewest(const std::vector<SharedText>& recordIDs, std::optional<std::int64_t> limit,
                             const Visit& visit) = 0;

    // The same of all that search() would find, where that can be had without it.
    virtual std::optional<std::vector<ArchivedEntry>> newestHolding(const std::string& /*text*/,
                                                                    std::int64_t /*limit*/) {
        return std::nullopt;
    }

    virtual std::string shortestHandle(const ArchivedEntry& entry) = 0;

    // As an index has it, markers included; absent when none has.
    virtual std::optional<std::string> body(const ArchivedEntry& entry) = 0;

    // The text of the PresenceSignature of all mails.
    virtual std::string presenceSignature() = 0;
};

// Null where only the library can tell, and where it is loaded already.
std::unique_ptr<EntrySource> quickEntries(Session& session);

// Loads the library unless it is loaded.
std::unique_ptr<EntrySource> loadedEntries(Session& session);

// ask(source), of the quick one where that can answer. It may be asked twice, so it prints nothing.
template <class Ask>
auto askEntries(Session& session, const Ask& ask) {
    if (const auto quick = quickEntries(session)) {
        try {
            return ask(*quick);
        } catch (const DigestMisfit&) {
            session.dropQuickLibrary();
        }
    }
    return ask(*loadedEntries(session));
}

} // namespace corvane::cli
