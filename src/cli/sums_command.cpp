#include <cstdio>
#include <string>

#include <fmt/format.h>
#include <unistd.h>

#include "archive/checks/archive_sums.h"
#include "cli/commands.h"
#include "cli/exit_status.h"
#include "cli/output.h"
#include "platform/paths.h"

namespace corvane::cli {

namespace {

void printJson(const ArchiveSums& sums) {
    JsonDocument document;
    document.object([&] {
        document.key("sums");
        document.array([&] {
            for (const ArchiveSums::Sum& sum : sums.sums) {
                document.object([&] {
                    document.member("path", sum.path);
                    document.member("sha256", sum.sha256);
                });
            }
        });
    });
    document.print();
}

// For the programs that check the sums every byte of a name counts; a terminal gets it as any other text.
void printLines(const ArchiveSums& sums) {
    if (::isatty(STDOUT_FILENO) == 1) {
        for (const ArchiveSums::Sum& sum : sums.sums) printText(sumLine(sum));
        return;
    }
    std::string lines;
    for (const ArchiveSums::Sum& sum : sums.sums) lines.append(sumLine(sum)) += '\n';
    if (std::fwrite(lines.data(), 1, lines.size(), stdout) != lines.size() || std::fflush(stdout) != 0)
        throw CommandFailure("无法写到标准输出");
}

} // namespace

int runSums(const std::string& root, bool json) {
    const ArchiveSums sums = sumsOfArchive(platform::standardizedPath(root));
    if (json)
        printJson(sums);
    else
        printLines(sums);
    if (sums.withoutHash > 0) {
        fmt::print(stderr, "{} 条记录没有校验值；verify --record 可以补记。\n", sums.withoutHash);
    }
    return done;
}

} // namespace corvane::cli
