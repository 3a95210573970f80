// Archives that are known and there while their index can't be read, and those that a search couldn't ask.
// Without a word of them a command that answers from the archives would say that there are none.
#pragma once

#include <string>
#include <vector>

#include "cli/session.h"

namespace corvane::cli {

// After the library was loaded: a line on standard error for each of them, with the cause. Whether there is
// one. Each place has the limit of every look.
bool tellUnreadableArchives(Session& session);

// A line on standard error for each archive that a search couldn't ask.
void tellUnsearchedArchives(const std::vector<std::string>& roots);

} // namespace corvane::cli
