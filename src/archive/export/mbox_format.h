// The mbox format in its variant "mboxrd", which gives back every byte: each line of ">"s and "From " gets
// one ">" more, and loses it when it is read.
// https://www.loc.gov/preservation/digital/formats/fdd/fdd000385.shtml
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "records/archived/archive_records.h"

namespace corvane::archive {

// The line before a mail, its line end included: "From ADDRESS Sat Jan  4 10:00:00 2014", in UTC. A sender
// whose address isn't plain ASCII without blanks is called MAILER-DAEMON.
std::string mboxFromLine(const ArchivedEmailRecord& record);

// Quotes one mail that comes in pieces. The output has the mail, a line end where the mail has none at its
// end, and an empty line. One thread.
class MboxQuoting {
  public:
    using Output = std::function<void(std::string_view)>;

    explicit MboxQuoting(Output output)
      : output_(std::move(output)) {}

    void add(std::string_view piece);

    // After the last piece; the next mail may begin.
    void end();

  private:
    void addToLine(std::string_view& rest);
    void addToStart(std::string_view& rest);

    Output output_;
    std::size_t matched_ = 0; // of "From ", held back at the start of a line
    bool isAtStart_ = true;   // of a line, ">"s left out
    bool hasLineEnd_ = true;  // at the end of what came
};

} // namespace corvane::archive
