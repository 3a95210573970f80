#include "cli/commands/commands.h"

namespace corvane::cli {

void addCommands(CommandSet& commands) {
    addScanCommands(commands);
    addListCommands(commands);
    addArchiveCommand(commands);
    addProveCommand(commands);
    addVerifyCommand(commands);
    addSumsCommand(commands);
    addRebuildCommand(commands);
    addLocationsCommand(commands);
    addLibraryCommand(commands);
    addMergeCommand(commands);
    addOverviewCommand(commands);
    addGuideCommand(commands);
    addSpaceCommand(commands);
    addSearchCommand(commands);
    addIndexCommand(commands);
    addShowCommand(commands);
    addSplitCommand(commands);
    addPresenceCommand(commands);
    addRemovalCommands(commands);
    addConfigCommand(commands);
    addAttachmentCommands(commands);
    addOpenCommands(commands);
    addExportCommand(commands);
}

} // namespace corvane::cli
