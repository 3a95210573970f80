// Where exported mail goes: one mail after the other, in pieces. One thread; blocks.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/files/sha256.h"
#include "records/archived/archive_records.h"

namespace corvane::archive {

// A mail that was read once and is whole.
struct ExportedMail {
    ArchivedEmailRecord record;
    std::int64_t bytes = 0;
    platform::Sha256Digest hash{};
};

class ExportTarget {
  public:
    virtual ~ExportTarget() = default;

    // Whether a mail that breaks off leaves nothing behind, so that the others can go on. Where it does, the
    // whole export has failed.
    [[nodiscard]] virtual bool canDropMail() const = 0;

    // The three throw std::exception, with the text for the user, when the mail can't be written. False when
    // the target has the mail already, and wants none of its pieces.
    virtual bool begin(const ExportedMail& mail) = 0;
    virtual void write(std::string_view piece) = 0;
    virtual void end() = 0;

    // The mail that was begun isn't wanted.
    virtual void drop() {}

    // After the last mail; what was written counts from here on, where it is one file. Throws as above.
    virtual void finish() = 0;
};

} // namespace corvane::archive
