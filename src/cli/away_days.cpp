#include "cli/away_days.h"

#include <string>
#include <string_view>

#include <fmt/format.h>

#include "locations/loading/all_files_here.h"
#include "records/texts/formatters.h"

namespace corvane::cli {

AwayProofs awayProofsOf(Session& session, const std::function<bool(const MailMessageRecord&)>& isLookedAt) {
    CorvaneViewModel& model = session.model();
    const LibraryLoader& library = model.library().loader;
    const ArchiveRoots roots = disconnectedRoots(library.archiveLocations());
    if (roots.empty() && areAllFilesHere(*library.archivedFiles(), library.archiveLocations())) return {};
    const auto isAny = [](const MailMessageRecord&) { return true; };
    return awayProofs(*model.mail().catalog.availability().proofs, roots, *model.mail().catalog.messages(),
                      isLookedAt ? isLookedAt : isAny);
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
    const std::string day = formatListDate(away.oldest).substr(0, dayLength);
    if (away.inCloud == 0)
        return printText(
            fmt::format("已逐字节核对的邮件里，{} 封按归档还连接时的核对计算（最早 {}），现在没有连接。",
                        away.count, day));
    printText(fmt::format(
        "已逐字节核对的邮件里，{} 封按归档文件还在本机时的核对计算（最早 {}），其中 {} 封现在只在云端。",
        away.count, day, away.inCloud));
}

} // namespace corvane::cli
