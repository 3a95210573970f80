// The mail of a scan by its content: which message a file of an archive is of, where the file itself doesn't
// say so, or says otherwise than Mail does. A run gave it the id that the scan has. Immutable once made;
// looks at the copies on the disk, never opens them.
#pragma once

#include <map>
#include <string_view>
#include <vector>

#include "platform/files/sha256.h"
#include "records/archived/file_readings.h"
#include "records/archived/proof_facts.h"
#include "records/mail_message_record.h"

namespace corvane::archive {

// Either may be null: then nothing is known.
struct ScannedMail {
    SharedMessageList messages;
    SharedProofFacts facts;
};

class ScannedCopies {
  public:
    // Linear in the copies.
    explicit ScannedCopies(ScannedMail mail);

    // The message that has a copy with these bytes, by what was last read of it: the copy still has its size
    // and time, and is no other message's by the start of the bytes. Null when there is none.
    [[nodiscard]] const MailMessageRecord* messageWith(const platform::Sha256Digest& hash,
                                                       std::string_view start) const;

  private:
    struct Copy {
        const MailMessageRecord* message = nullptr;
        std::string_view path;
        FileStamp stamp;
    };

    ScannedMail mail_;
    std::multimap<platform::Sha256Digest, Copy> copies_; // of the mail
};

} // namespace corvane::archive
