// From where the outcome of one message is derived: its copies as they are on the disk now, the entries that
// archives have of it, and what was read of both. Looks at copies, never opens them. Any thread, one at a
// time for each object.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "listing/proof/archived_records.h"
#include "listing/proof/proof_outcome.h"
#include "records/archived/proof_facts.h"
#include "records/mail_message_record.h"

namespace corvane {

// Which archived files are there, as the last look at the archives found them. Any thread.
class ArchivedFileLooks {
  public:
    virtual ~ArchivedFileLooks() = default;

    struct Look {
        ProofFile::Place place = ProofFile::Place::outOfReach;
        FileStamp stamp; // of a file that is there
    };

    [[nodiscard]] virtual Look at(std::string_view root, std::string_view relativePath) const = 0;
};

using SharedFileLooks = std::shared_ptr<const ArchivedFileLooks>;

// All of it shared; equal inputs have equal outcomes as long as no copy changes on the disk.
struct ProofInputs {
    SharedProofFacts facts = std::make_shared<const ProofFacts>();
    SharedEntryList entries = std::make_shared<const std::vector<ArchivedEntry>>();
    SharedFileLooks looks; // null while no archive was looked at: then nothing is known of any message

    friend bool operator==(const ProofInputs&, const ProofInputs&) = default;
};

// What the outcome of one message is derived from.
struct ProofSubject {
    std::vector<std::string> paths; // of the copies, for those who refer to them
    std::vector<ProofCopy> copies;
    std::vector<ProofFile> files;
};

class ProofSources {
  public:
    // `records` are those of the inputs' entries, and the looks aren't null. Refers to its arguments.
    ProofSources(const ProofInputs& inputs, const ArchivedRecords& records)
      : inputs_(inputs)
      , records_(records) {}

    // Whether an archive has a record of the message.
    [[nodiscard]] bool isArchived(const MailMessageRecord& message) const;

    // Into a subject whose room is used again. Without any record the copies aren't looked at.
    void gather(const MailMessageRecord& message, ProofSubject& subject) const;

  private:
    void gatherFiles(const MailMessageRecord& message, ProofSubject& subject) const;
    void gatherCopies(const MailMessageRecord& message, ProofSubject& subject) const;

    const ProofInputs& inputs_;
    const ArchivedRecords& records_;
};

} // namespace corvane
