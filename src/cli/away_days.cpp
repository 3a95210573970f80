#include "cli/away_days.h"

#include <string>
#include <string_view>

#include <fmt/format.h>

#include "records/texts/formatters.h"

namespace corvane::cli {

AwayProofs awayProofsOf(Session& session, const std::function<bool(const MailMessageRecord&)>& isLookedAt) {
    CorvaneViewModel& model = session.model();
    const auto isAny = [](const MailMessageRecord&) { return true; };
    return awayProofs(*model.mail().catalog.availability().proofs,
                      disconnectedRoots(model.library().loader.archiveLocations()),
                      *model.mail().catalog.messages(), isLookedAt ? isLookedAt : isAny);
}

void writeAwayProofs(JsonDocument& document, const AwayProofs& away) {
    if (away.count == 0) return;
    document.key("awayProofs");
    document.object([&] {
        document.member("count", away.count);
        document.member("oldest", away.oldest);
    });
}

void printAwayProofs(const AwayProofs& away) {
    if (away.count == 0) return;
    constexpr std::size_t dayLength = std::string_view("2026-11-22").size();
    printText(fmt::format("已逐字节核对的邮件里，{} 封按归档还连接时的核对计算（最早 {}），现在没有连接。",
                          away.count, formatListDate(away.oldest).substr(0, dayLength)));
}

} // namespace corvane::cli
