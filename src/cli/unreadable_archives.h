// Archives that are there while their index can't be read, and those that a search couldn't ask.
// Without a word of them a command that answers from the archives would say that there are none.
#pragma once

#include <string>
#include <vector>

namespace corvane::cli {

// A line on standard error for the archive with that root, with the cause. The look for it has the limit of
// every look.
void tellUnreadableArchive(const std::string& root);

// A line on standard error for each archive that a search couldn't ask, and for each most of whose mail
// isn't prepared for searching.
void tellUnsearchedArchives(const std::vector<std::string>& unreadable,
                            const std::vector<std::string>& unprepared);

} // namespace corvane::cli
