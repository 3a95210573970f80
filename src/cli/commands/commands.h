// The commands of corvane-cli, each of which adds itself with its options. A failure for the user is thrown
// as CommandFailure, a name that can't be used as WrongUsage.
#pragma once

#include "cli/command_set.h"

namespace corvane::cli {

// All of them, in the order of the help.
void addCommands(CommandSet& commands);

void addScanCommands(CommandSet& commands);
void addListCommands(CommandSet& commands);
void addArchiveCommand(CommandSet& commands);
void addProveCommand(CommandSet& commands);
void addVerifyCommand(CommandSet& commands);
void addSumsCommand(CommandSet& commands);
void addRebuildCommand(CommandSet& commands);
void addLocationsCommand(CommandSet& commands);
void addLibraryCommand(CommandSet& commands);
void addMergeCommand(CommandSet& commands);
void addOverviewCommand(CommandSet& commands);
void addGuideCommand(CommandSet& commands);
void addSpaceCommand(CommandSet& commands);
void addSearchCommand(CommandSet& commands);
void addIndexCommand(CommandSet& commands);
void addPresenceCommand(CommandSet& commands);
void addRemovalCommands(CommandSet& commands);
void addConfigCommand(CommandSet& commands);
void addShowCommand(CommandSet& commands);
void addSplitCommand(CommandSet& commands);
void addAttachmentCommands(CommandSet& commands);
void addOpenCommands(CommandSet& commands);
void addExportCommand(CommandSet& commands);

} // namespace corvane::cli
