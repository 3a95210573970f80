#include "cli/mails/entry_source.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <unordered_set>

#include "library/entry_handles.h"
#include "locations/loading/quick_library.h"
#include "model/library/presence/original_presence.h"
#include "search/mail_search_index.h"

namespace corvane::cli {

namespace {

class QuickEntries final : public EntrySource {
  public:
    explicit QuickEntries(const QuickLibrary& library)
      : library_(library) {}

    std::vector<ArchivedEntry> find(const std::string& name) override {
        const auto found = library_.find(name);
        // What isn't there is for the library to say.
        if (found.empty()) throw DigestMisfit("no digest has it");
        return entriesOf(found);
    }

    FoundIDs search(const std::string& text) override {
        QuickLibrary::Search found = library_.search(text);
        return {std::move(found.ids), std::move(found.unreadableRoots), std::move(found.unpreparedRoots)};
    }

    void visitNewest(const std::vector<SharedText>& recordIDs, std::optional<std::int64_t> limit,
                     const Visit& visit) override {
        library_.visitNewest(recordIDs, limit, visit);
    }

    std::optional<std::vector<ArchivedEntry>> newestHolding(const std::string& text,
                                                            std::int64_t limit) override {
        return library_.newestHolding(text, limit);
    }

    std::string shortestHandle(const ArchivedEntry& entry) override {
        return library_.shortestHandle(entry.id());
    }

    std::optional<std::string> body(const ArchivedEntry& entry) override {
        return library_.body(entry.record.id.view());
    }

    std::string presenceSignature() override { return library_.presenceSignature(); }

  private:
    std::vector<ArchivedEntry> entriesOf(const std::vector<QuickLibrary::Found>& found) {
        std::vector<ArchivedEntry> entries;
        for (const auto& each : found) entries.push_back(library_.entry(each));
        return entries;
    }

    const QuickLibrary& library_;
};

class LoadedEntries final : public EntrySource {
  public:
    explicit LoadedEntries(Session& session)
      : session_(session)
      , entries_(session.model().library().loader.archivedEntries())
      , handles_(*entries_) {}

    std::vector<ArchivedEntry> find(const std::string& name) override {
        std::vector<ArchivedEntry> found;
        for (const EntryPosition position : handles_.find(name)) found.push_back((*entries_)[position]);
        return found;
    }

    FoundIDs search(const std::string& text) override {
        FoundIDs result;
        session_.model().library().bodyTexts.searchArchive(text, [&](const ArchiveSearchResult& found) {
            result.ids.assign(found.ids.begin(), found.ids.end());
            result.rootsNotAsked = found.unreadableRoots;
            result.rootsNotPrepared = found.unpreparedRoots;
        });
        session_.waitUntilIdle();
        std::ranges::sort(result.ids);
        return result;
    }

    void visitNewest(const std::vector<SharedText>& recordIDs, std::optional<std::int64_t> limit,
                     const Visit& visit) override {
        const std::unordered_set<std::string_view> wanted(recordIDs.begin(), recordIDs.end());
        std::vector<const ArchivedEntry*> mails;
        for (const ArchivedEntry& entry : *entries_) {
            if (wanted.contains(entry.record.id)) mails.push_back(&entry);
        }
        // An absent date is less than any other.
        std::ranges::stable_sort(mails, std::greater(), [](const auto* mail) { return mail->record.date; });
        if (limit && *limit < std::ssize(mails)) mails.resize(static_cast<std::size_t>(*limit));
        for (const ArchivedEntry* const mail : mails) visit(*mail);
    }

    std::string shortestHandle(const ArchivedEntry& entry) override {
        return handles_.shortest(handles_.find(entry.id()).front());
    }

    std::optional<std::string> body(const ArchivedEntry& entry) override {
        for (const auto& [root, index] : *session_.model().library().loader.locationSearchIndexes()) {
            if (auto body = index->body(entry.record.id)) return body;
        }
        return std::nullopt;
    }

    std::string presenceSignature() override { return archivedOriginalPresenceSignature(*entries_); }

  private:
    Session& session_;
    SharedEntryList entries_;
    EntryHandles handles_;
};

} // namespace

std::unique_ptr<EntrySource> quickEntries(Session& session) {
    const QuickLibrary* const library = session.isLibraryLoaded() ? nullptr : session.quickLibrary();
    return library == nullptr ? nullptr : std::make_unique<QuickEntries>(*library);
}

std::unique_ptr<EntrySource> loadedEntries(Session& session) {
    if (!session.isLibraryLoaded()) loadLibrary(session);
    return std::make_unique<LoadedEntries>(session);
}

} // namespace corvane::cli
