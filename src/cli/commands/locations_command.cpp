#include <fmt/format.h>

#include "cli/commands/commands.h"
#include "cli/console/output.h"
#include "cli/console/text_table.h"
#include "cli/exit_status.h"

namespace corvane::cli {

namespace {

int runLocations(Session& session, bool json) {
    loadLibrary(session);
    const auto& locations = session.model().library().loader.archiveLocations();
    if (json) {
        JsonDocument document;
        document.value(locations);
        document.print();
        return done;
    }
    TextTable table(
        {TextTable::Align::left, TextTable::Align::right, TextTable::Align::left, TextTable::Align::left});
    table.row({"位置", "邮件", "状态", "路径"});
    for (const ArchiveLocation& location : locations) {
        table.row({location.displayName, fmt::format("{}", location.count),
                   location.isConnected ? "已连接" : "未连接", location.rootPath});
    }
    table.print();
    return done;
}

} // namespace

void addLocationsCommand(CommandSet& commands) {
    commands.setRun(commands.add("locations", "已知的归档位置",
                                 {{{"locations", "列出归档位置和它们的状态"},
                                   {"locations --json", "同样的内容，给脚本用"}}}),
                    &runLocations);
}

} // namespace corvane::cli
