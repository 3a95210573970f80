#include <iostream>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include <fmt/format.h>

#include "cli/commands/commands.h"
#include "cli/console/output.h"
#include "cli/exit_status.h"
#include "cli/mails/mail_texts.h"
#include "mime/body/body_snippets.h"
#include "mime/body/body_split.h"
#include "platform/files/directory.h"

namespace corvane::cli {

namespace {

struct SplitOptions {
    std::string file;
    std::string query;
    bool allRecipients = false;
};

std::string readText(const std::string& file) {
    if (file == "-") return {std::istreambuf_iterator<char>(std::cin), {}};
    auto text = platform::readFile(file);
    if (!text) throw CommandFailure(fmt::format("无法读取 “{}”", file));
    return std::move(*text);
}

void printJson(const std::string& text, const SplitOptions& options) {
    const mime::BodyParts parts = mime::splitBody(text);
    JsonDocument document;
    document.object([&] {
        document.member("body", parts.bodyText);
        if (parts.signatureText) document.member("signature", *parts.signatureText);
        if (parts.quotedText) document.member("quoted", *parts.quotedText);
        document.member("canCollapse", parts.canCollapse(options.query));
        addSegments(document, openSegments(parts, options.allRecipients));
        if (const auto preview = mime::rowPreviewText(text)) document.member("preview", *preview);
        if (const auto snippet = snippetText(text, options.query)) document.member("snippet", *snippet);
    });
    document.print();
}

int runSplit(const SplitOptions& options, bool json) {
    const std::string text = readText(options.file);
    if (json)
        printJson(text, options);
    else
        printLines(textOf(openSegments(mime::splitBody(text), options.allRecipients)));
    return done;
}

} // namespace

void addSplitCommand(CommandSet& commands) {
    auto options = std::make_shared<SplitOptions>();
    CLI::App& split =
        commands.add("split", "把一段正文分成正文、签名和引用的历史邮件",
                     {{{"split 正文.txt", "按阅读窗格的样子显示"},
                       {"split --json --query 合同 - < 正文.txt", "从标准输入读取，给脚本用"}}});
    split.add_option("file", options->file, "UTF-8 文字文件，- 为标准输入")->required()->type_name("FILE");
    split.add_option("--query", options->query, "要找的文字");
    split.add_flag("--all-recipients", options->allRecipients, "引用的历史邮件中列出全部收件人");
    commands.setRunAlone(split,
                         [options](const CommonOptions& common) { return runSplit(*options, common.json); });
}

} // namespace corvane::cli
