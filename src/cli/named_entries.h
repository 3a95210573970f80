// Archived mail as the user names it: by its entry id, by its record id where just one entry has that, or by
// its handle.
#pragma once

#include <string>
#include <vector>

#include <CLI/App.hpp>

#include "cli/session.h"
#include "records/archived/archive_records.h"

namespace corvane::cli {

class EntrySource;

// The argument of a command that takes one mail, and of one that takes some.
void addNameArgument(CLI::App& command, std::string& name);
void addNamesArgument(CLI::App& command, std::vector<std::string>& names);

// Throws CommandFailure where no archived mail has the name, and WrongUsage, with a line for each of them,
// where several have it. The model's library may be loaded by this or not.
ArchivedEntry namedEntry(Session& session, const std::string& name);

// The same of one source.
ArchivedEntry namedEntry(EntrySource& source, const std::string& name);

// The mails in the order of the names, each once.
std::vector<ArchivedEntry> namedEntries(Session& session, const std::vector<std::string>& names);

} // namespace corvane::cli
