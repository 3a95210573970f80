#include "cli/usage/command_descriptions.h"

#include <array>
#include <string_view>
#include <utility>

namespace corvane::cli {

namespace {

constexpr std::array<std::pair<std::string_view, std::string_view>, 8> valueWords{{{"TEXT", "文字"},
                                                                                   {"YEAR", "年份"},
                                                                                   {"INT", "数字"},
                                                                                   {"UINT", "数字"},
                                                                                   {"ENUM", "名称"},
                                                                                   {"DIR", "文件夹"},
                                                                                   {"FILE", "文件"},
                                                                                   {"MAIL", "邮件"}}};

std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::size_t start = 0;
    for (std::size_t at = 0; (at = text.find(separator, start)) != std::string::npos; start = at + 1)
        parts.push_back(text.substr(start, at - start));
    parts.push_back(text.substr(start));
    return parts;
}

// The parser joins the type and what each check calls itself by colons.
void describeValue(const std::string& typeName, OptionDescription& description) {
    std::string word;
    for (const std::string& part : split(typeName, ':')) {
        if (part.starts_with('{'))
            description.choices = split(part.substr(1, part.size() - 2), '|');
        else if (!part.empty())
            word = part;
    }
    description.isFile = word == "DIR" || word == "FILE";
    description.value = word;
    for (const auto& [name, shown] : valueWords) {
        if (word == name) description.value = shown;
    }
}

OptionDescription describeOption(const CLI::Option& option) {
    OptionDescription description;
    description.summary = option.get_description();
    for (const std::string& name : option.get_snames()) description.names.push_back("-" + name);
    for (const std::string& name : option.get_lnames()) description.names.push_back("--" + name);
    if (option.get_positional()) description.names = {option.get_name(true, false)};
    if (option.get_type_size() != 0) describeValue(option.get_type_name(), description);
    description.isRequired = option.get_required();
    description.isRepeatable = option.get_expected_max() == CLI::detail::expected_max_vector_size;
    return description;
}

std::vector<OptionDescription> describeEach(const CLI::App& command, bool positional) {
    std::vector<OptionDescription> descriptions;
    for (const CLI::Option* option : command.get_options({})) {
        const bool isOfParent = option == command.get_help_ptr() && command.get_parent() != nullptr;
        if (option->get_positional() == positional && !option->get_group().empty() && !isOfParent)
            descriptions.push_back(describeOption(*option));
    }
    return descriptions;
}

} // namespace

std::vector<OptionDescription> describeOptions(const CLI::App& command) {
    return describeEach(command, false);
}

CommandDescription describeCommand(const CLI::App& command) {
    return {command.get_name(), command.get_description(), command.get_footer(), describeEach(command, true),
            describeOptions(command)};
}

ProgramDescription describeProgram(const CLI::App& parser) {
    ProgramDescription program{parser.get_name(), parser.get_description(), describeOptions(parser), {}};
    for (const CLI::App* command : parser.get_subcommands({})) {
        if (!command->get_group().empty()) program.commands.push_back(describeCommand(*command));
    }
    return program;
}

} // namespace corvane::cli
