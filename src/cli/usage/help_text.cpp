#include "cli/usage/help_text.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "cli/usage/command_descriptions.h"
#include "text/graphemes.h"

namespace corvane::cli {

namespace {

using Lines = std::vector<std::pair<std::string, std::string>>;

std::string block(std::string_view title, const Lines& lines) {
    if (lines.empty()) return "";
    std::size_t width = 0;
    for (const auto& [form, summary] : lines) width = std::max(width, text::displayWidth(form));
    std::string result = fmt::format("\n{}：\n", title);
    for (const auto& [form, summary] : lines)
        result += fmt::format("  {}{:{}}  {}\n", form, "", width - text::displayWidth(form), summary);
    return result;
}

Lines linesOf(const std::vector<OptionDescription>& options) {
    Lines lines;
    for (const OptionDescription& option : options) {
        std::string summary = option.summary;
        if (option.isRepeatable) summary += "，可重复";
        if (option.isRequired) summary += "（必需）";
        lines.emplace_back(optionForm(option), std::move(summary));
    }
    return lines;
}

std::string argumentForm(const OptionDescription& argument) {
    const std::string form = argument.names.front() + (argument.isRepeatable ? "..." : "");
    return argument.isRequired ? form : "[" + form + "]";
}

std::string programHelp(const ProgramDescription& program) {
    Lines commands;
    for (const CommandDescription& command : program.commands)
        commands.emplace_back(command.name, command.summary);
    return fmt::format("Corvane：{}\n\n用法：{} [选项] 命令 [参数]\n", program.summary, program.name) +
           block("选项", linesOf(program.commonOptions)) + block("命令", commands) +
           fmt::format("\n“{} 命令 --help” 显示一个命令的用法和示例。\n", program.name);
}

} // namespace

std::string optionForm(const OptionDescription& option) {
    std::string form = fmt::format("{}", fmt::join(option.names, ", "));
    const bool isArgument = !option.names.front().starts_with('-');
    if (!option.choices.empty()) return form + fmt::format(" {}", fmt::join(option.choices, "|"));
    return option.value.empty() || isArgument ? form : form + " " + option.value;
}

std::string helpText(const CLI::App& parser) {
    const CLI::App* const outer = parser.get_parent();
    if (outer == nullptr) return programHelp(describeProgram(parser));
    const CommandDescription command = describeCommand(parser);
    std::string usage = fmt::format("用法：{} {} [选项]", outer->get_name(), command.name);
    for (const OptionDescription& argument : command.arguments) usage += " " + argumentForm(argument);
    return fmt::format("{}\n\n{}\n", usage, command.summary) + block("参数", linesOf(command.arguments)) +
           block("选项", linesOf(command.options)) +
           block("所有命令的选项", linesOf(describeOptions(*outer))) + "\n示例：\n" + command.examples;
}

} // namespace corvane::cli
