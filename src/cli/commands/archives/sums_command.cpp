#include <cstdio>
#include <memory>
#include <string>

#include <fmt/format.h>
#include <unistd.h>

#include "archive/checks/archive_sums.h"
#include "cli/commands/commands.h"
#include "cli/console/output.h"
#include "cli/exit_status.h"
#include "platform/paths.h"

namespace corvane::cli {

namespace {

void printJson(const ArchiveSums& sums) {
    JsonDocument document;
    document.object([&] {
        document.objects("sums", sums.sums, [&](const ArchiveSums::Sum& sum) {
            document.member("path", sum.path);
            document.member("sha256", sum.sha256);
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
    printRaw(lines);
}

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

} // namespace

void addSumsCommand(CommandSet& commands) {
    auto root = std::make_shared<std::string>();
    CLI::App& sums = commands.add("sums", "归档的校验值，可用 sha256sum -c 或 shasum -c 核对",
                                  {{{"sums ~/邮件归档 > 校验值.txt", "写出校验值"},
                                    {"sums ~/邮件归档 | (cd ~/邮件归档 && sha256sum -c)", "马上核对"}}});
    sums.add_option("root", *root, "归档文件夹")->required()->type_name("DIR");
    commands.setRunAlone(sums, [root](const CommonOptions& common) { return runSums(*root, common.json); });
}

} // namespace corvane::cli
