#include "cli/proving.h"

#include <string>

#include <fmt/format.h>

#include "cli/console/progress_line.h"
#include "records/logs/console_log.h"
#include "records/texts/formatters.h"

namespace corvane::cli {

namespace {

void warnOfHungPlaces(const ProofFlow& proof) {
    if (!proof.lastEnd()) return;
    for (const std::string& root : proof.lastEnd()->hungPlaces)
        messageLine(fmt::format("没有响应，未能核对：{}", root.empty() ? "Mail 存储" : root));
}

} // namespace

void proveToEnd(Session& session, const ProofScope& scope) {
    ProofFlow& proof = session.model().archiving().proof;
    ProgressLine line;
    const auto shown = QObject::connect(&proof, &ProofFlow::progressChanged, [&] {
        const auto& progress = proof.progress();
        if (!progress || progress->total == 0) return;
        line.show(fmt::format("已核对 {} / {} 封，读取 {}", progress->completed, progress->total,
                              formatByteCount(progress->bytesRead)),
                  double(progress->completed) / double(progress->total));
    });
    proof.prove(scope);
    session.waitUntilIdle([&] { proof.cancel(); });
    QObject::disconnect(shown);
    warnOfHungPlaces(proof);
}

} // namespace corvane::cli
