#include "listing/proof/proof_table.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "listing/message_set.h"
#include "platform/threads/parallel.h"

namespace corvane {

namespace {

// Looking at a file takes a few microseconds: enough of them that handing them out costs nothing.
constexpr std::size_t messagesAtATime = 512;

struct Chunk {
    std::vector<SharedText> proven;
    std::vector<std::pair<SharedText, ProofVerdict>> against;
    std::vector<SharedText> unmatched;
};

bool isUnmatched(const MailMessageRecord& message, const ProofSubject& subject) {
    if (lacksRecord(subject.copies, subject.files)) return true;
    if (message.messageIdentifier && !message.messageIdentifier->empty()) return false;
    const auto wasRead = [](const auto& file) { return file.reading != nullptr; };
    if (std::ranges::all_of(subject.copies, wasRead)) return false;
    return std::ranges::any_of(subject.files, [&](const ProofFile& file) {
        return file.entry->record.id != subject.files.front().entry->record.id;
    });
}

class TableMaker {
  public:
    TableMaker(const MessageList& messages, const SharedTextSet& availableIDs,
               const SharedTextSet& archivedIDs, const ProofSources& sources)
      : messages_(messages)
      , availableIDs_(availableIDs)
      , archivedIDs_(archivedIDs)
      , sources_(sources)
      , areAllAvailable_(areAllAvailable(messages, availableIDs)) {}

    [[nodiscard]] Chunk judge(std::size_t begin, std::size_t end) const {
        Chunk chunk;
        ProofSubject subject;
        for (std::size_t position = begin; position < end; ++position) {
            const MailMessageRecord& message = messages_[position];
            if (!archivedIDs_.contains(message.id)) continue;
            if (!areAllAvailable_ && !availableIDs_.contains(message.id)) continue;
            sources_.gather(message, subject);
            ProofVerdict verdict = proofVerdict(subject.copies, subject.files);
            if (verdict.outcome == ProofOutcome::proven)
                chunk.proven.push_back(message.id);
            else if (verdict.outcome != ProofOutcome::notLookedAt)
                chunk.against.emplace_back(message.id, std::move(verdict));
            else if (isUnmatched(message, subject))
                chunk.unmatched.push_back(message.id);
        }
        return chunk;
    }

  private:
    const MessageList& messages_;
    const SharedTextSet& availableIDs_;
    const SharedTextSet& archivedIDs_;
    const ProofSources& sources_;
    const bool areAllAvailable_;
};

void fill(ProofTable& table, std::vector<Chunk> chunks) {
    std::size_t provenCount = 0;
    for (const Chunk& chunk : chunks) provenCount += chunk.proven.size();
    auto proven = std::make_shared<SharedTextSet>();
    proven->reserve(provenCount);
    auto unmatched = std::make_shared<SharedTextSet>();
    for (Chunk& chunk : chunks) {
        for (SharedText& id : chunk.proven) proven->insert(std::move(id));
        for (SharedText& id : chunk.unmatched) unmatched->insert(std::move(id));
        for (auto& [id, verdict] : chunk.against) table.against.emplace(std::move(id), std::move(verdict));
    }
    table.provenIDs = std::move(proven);
    table.unmatchedIDs = std::move(unmatched);
}

SharedArchivedRecords recordsOf(const SharedEntryList& entries, const SharedProofTable& earlier) {
    if (earlier && earlier->records && earlier->records->entries() == entries) return earlier->records;
    return ArchivedRecords::make(entries);
}

} // namespace

ProofOutcome ProofTable::outcomeOf(std::string_view messageID) const {
    if (const ProofVerdict* verdict = verdictAgainst(messageID)) return verdict->outcome;
    return provenIDs->find(messageID) == provenIDs->end() ? ProofOutcome::notLookedAt : ProofOutcome::proven;
}

const ProofVerdict* ProofTable::verdictAgainst(std::string_view messageID) const {
    const auto known = against.find(messageID);
    return known == against.end() ? nullptr : &known->second;
}

SharedProofTable computeProofTable(const MessageList& messages, const SharedTextSet& availableIDs,
                                   const SharedTextSet& archivedIDs, const ProofInputs& inputs,
                                   const SharedProofTable& earlier, const std::stop_token& stop) {
    auto table = std::make_shared<ProofTable>();
    table->inputs = inputs;
    if (!inputs.looks) return table;
    table->isKnown = true;
    if (archivedIDs.empty()) return table;
    table->records = recordsOf(inputs.entries, earlier);
    const ProofSources sources(table->inputs, *table->records);
    const TableMaker maker(messages, availableIDs, archivedIDs, sources);
    std::vector<Chunk> chunks((messages.size() + messagesAtATime - 1) / messagesAtATime);
    platform::parallelFor(0, chunks.size(), [&](std::size_t number) {
        if (stop.stop_requested()) return;
        const std::size_t begin = number * messagesAtATime;
        chunks[number] = maker.judge(begin, std::min(begin + messagesAtATime, messages.size()));
    });
    if (stop.stop_requested()) return nullptr;
    fill(*table, std::move(chunks));
    return table;
}

} // namespace corvane
