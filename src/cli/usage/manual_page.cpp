#include "cli/usage/manual_page.h"

#include <string_view>
#include <vector>

#include <fmt/format.h>

#include "cli/usage/help_text.h"

namespace corvane::cli {

namespace {

// A line that begins with a point or a quote would be a request.
std::string roff(std::string_view text) {
    std::string result;
    bool atLineStart = true;
    for (const char byte : text) {
        if (atLineStart && (byte == '.' || byte == '\'')) result += "\\&";
        if (byte == '\\')
            result += "\\e";
        else if (byte == '-')
            result += "\\-";
        else
            result += byte;
        atLineStart = byte == '\n';
    }
    return result;
}

std::string options(const std::vector<OptionDescription>& descriptions) {
    std::string text;
    for (const OptionDescription& option : descriptions)
        text += fmt::format(".TP\n\\fB{}\\fR\n{}\n", roff(optionForm(option)), roff(option.summary));
    return text;
}

} // namespace

std::string manualPage(const ProgramDescription& program) {
    std::string page = fmt::format(".TH CORVANE\\-CLI 1\n.SH NAME\n{} \\- {}\n.SH SYNOPSIS\n.B {}\n"
                                   "[选项] 命令 [参数]\n.SH OPTIONS\n",
                                   roff(program.name), roff(program.summary), roff(program.name));
    page += options(program.commonOptions) + ".SH COMMANDS\n";
    for (const CommandDescription& command : program.commands) {
        page += fmt::format(".SS {}\n{}\n", roff(command.name), roff(command.summary));
        page += options(command.arguments) + options(command.options);
        page += fmt::format(".PP\n.nf\n{}.fi\n", roff(command.examples));
    }
    return page + ".SH \"EXIT STATUS\"\n0 完成；1 操作失败；2 用法有误；3 完成但有问题；130 被中断。\n";
}

} // namespace corvane::cli
