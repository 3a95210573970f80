#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "cli/commands/commands.h"
#include "cli/console/output.h"
#include "cli/exit_status.h"
#include "records/logs/console_log.h"

namespace corvane::cli {

namespace {

int runSearch(Session& session, const std::string& text, bool json) {
    loadLibrary(session);
    std::vector<std::string> ids;
    std::vector<std::string> rootsNotAsked;
    session.model().bodyTexts().searchArchive(text, [&](const ArchiveSearchResult& found) {
        for (const SharedText& id : found.ids) ids.push_back(id.str());
        rootsNotAsked = found.unreadableRoots;
    });
    session.waitUntilIdle();
    for (const std::string& root : rootsNotAsked)
        messageLine(fmt::format("没能搜索这个归档，结果里没有它的邮件：{}", root));
    std::ranges::sort(ids);
    if (json) {
        JsonDocument document;
        document.value(ids);
        document.print();
    } else {
        for (const std::string& id : ids) printText(id);
    }
    return done;
}

} // namespace

void addSearchCommand(CommandSet& commands) {
    auto text = std::make_shared<std::string>();
    CLI::App& search = commands.add("search", "在所有归档中全文搜索",
                                    {{{"search 合同", "找出提到合同的邮件"},
                                      {"search --json \"annual report\"", "找到的邮件的 id，给脚本用"}}});
    search.add_option("text", *text, "要找的文字")->required();
    commands.setRun(search, [text](Session& session, bool json) { return runSearch(session, *text, json); });
}

} // namespace corvane::cli
