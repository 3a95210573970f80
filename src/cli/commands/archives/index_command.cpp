#include <cstdint>
#include <memory>
#include <utility>

#include <fmt/format.h>

#include "cli/commands/archives/body_index_filling.h"
#include "cli/commands/commands.h"
#include "cli/console/output.h"
#include "cli/console/progress_line.h"
#include "cli/exit_status.h"

namespace corvane::cli {

std::int64_t fillBodyIndex(Session& session, BodyIndexRequest request) {
    BodyTexts& texts = session.model().library().bodyTexts;
    ProgressLine line;
    std::int64_t indexed = 0;
    const auto shown = QObject::connect(&texts, &BodyTexts::bodyIndexProgressChanged, [&] {
        const auto& progress = texts.bodyIndexProgress();
        if (progress) line.show(progress->statusText, progress->fraction());
    });
    const auto counted =
        QObject::connect(&texts, &BodyTexts::bodyIndexFinished, [&](qint64 count) { indexed += count; });
    texts.rebuildBodyTextIndex(std::move(request));
    session.waitUntilIdle([&] { texts.cancelBodyTextIndex(); });
    QObject::disconnect(shown);
    QObject::disconnect(counted);
    return indexed;
}

namespace {

int runIndex(Session& session, bool force, bool json) {
    loadLibrary(session);
    BodyIndexRequest request = session.model().library().bodyTexts.requestForAllLocations(force);
    request.reloadWhenDone = false;
    const std::int64_t indexed = fillBodyIndex(session, std::move(request));
    if (json) {
        JsonDocument document;
        document.object([&] { document.member("indexed", indexed); });
        document.print();
    } else {
        printText(fmt::format("已处理 {} 封邮件的正文索引", indexed));
    }
    return statusOfAnswer();
}

} // namespace

void addIndexCommand(CommandSet& commands) {
    auto force = std::make_shared<bool>(false);
    CLI::App& index = commands.add("index", "为所有归档位置准备正文索引",
                                   {{{"index", "补上还没有的正文"}, {"index --force", "全部重新建立"}}});
    index.add_flag("--force", *force, "全部重新建立");
    commands.setRun(index, [force](Session& session, bool json) { return runIndex(session, *force, json); });
}

} // namespace corvane::cli
