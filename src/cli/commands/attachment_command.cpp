#include <cerrno>
#include <memory>
#include <string>

#include <fmt/format.h>

#include "archive/archive_naming.h"
#include "archive/bodies/archived_attachment.h"
#include "cli/commands/commands.h"
#include "cli/console/output.h"
#include "cli/exit_status.h"
#include "cli/named_entries.h"
#include "platform/files/directory.h"
#include "platform/files/durable_file.h"
#include "platform/paths.h"
#include "records/error_reasons.h"
#include "records/formatters.h"

namespace corvane::cli {

namespace {

struct AttachmentOptions {
    std::string entry;
    std::string name;
    std::string target; // a new file, or a folder
};

// Nothing that is there already is written over, unless it is that very content.
void writeAttachment(const std::string& path, const std::string& data) {
    const auto error = platform::writeNewFile(platform::posixFileLayer(), path, data);
    if (!error) return;
    if (error.value() != EEXIST)
        throw CommandFailure(fmt::format("无法写入 “{}”：{}", path, systemErrorReason(error.value())));
    if (platform::readFile(path, std::ssize(data)) != data)
        throw CommandFailure(fmt::format("“{}” 已存在，不会覆盖。", path));
}

int runAttachment(Session& session, const AttachmentOptions& options, bool json) {
    const ArchivedEntry entry = namedEntry(session, options.entry);
    const std::string data = archivedAttachmentData(session.platform(), entry, options.name);
    std::string path = platform::standardizedPath(options.target);
    // The name is the mail's: as one component it stays in the folder.
    if (platform::isDirectory(path)) path = platform::joinPath(path, archive::safeFileName(options.name));
    writeAttachment(path, data);
    if (json) {
        JsonDocument document;
        document.object([&] {
            document.member("path", path);
            document.member("bytes", std::ssize(data));
        });
        document.print();
    } else {
        printText(fmt::format("{}（{}）", path, formatByteCount(std::ssize(data))));
    }
    return done;
}

} // namespace

void addAttachmentCommand(CommandSet& commands) {
    auto options = std::make_shared<AttachmentOptions>();
    CLI::App& attachment = commands.add("attachment", "取出一个附件",
                                        {{{"attachment 3fa9c1 合同.pdf --to ~/桌面", "存到一个文件夹"},
                                          {"attachment 3fa9c1 合同.pdf --to 新名字.pdf", "存为一个新文件"}}});
    addNameArgument(attachment, options->entry);
    attachment.add_option("name", options->name, "附件的名称")->required();
    attachment.add_option("--to", options->target, "新文件，或已有的文件夹")->required()->type_name("FILE");
    commands.setRun(attachment, [options](Session& session, bool json) {
        return runAttachment(session, *options, json);
    });
}

} // namespace corvane::cli
