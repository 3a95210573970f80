#include "cli/usage/completions.h"

#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace corvane::cli {

namespace {

// In single quotes, as all three shells read it; a quote ends them, stands escaped, and begins them again.
std::string shellQuoted(std::string_view text) {
    std::string result = "'";
    for (const char byte : text) result += byte == '\'' ? std::string("'\\''") : std::string(1, byte);
    return result + "'";
}

std::vector<std::string> namesOf(const std::vector<OptionDescription>& options) {
    std::vector<std::string> names;
    for (const OptionDescription& option : options)
        names.insert(names.end(), option.names.begin(), option.names.end());
    return names;
}

std::vector<std::string> commandNames(const ProgramDescription& program) {
    std::vector<std::string> names;
    for (const CommandDescription& command : program.commands) names.push_back(command.name);
    return names;
}

// What may follow an option of that command; "*" for those that all commands have.
std::string bashValues(std::string_view command, const std::vector<OptionDescription>& options) {
    std::string cases;
    for (const OptionDescription& option : options) {
        if (option.value.empty()) continue;
        const std::string reply =
            option.choices.empty()
                ? std::string(option.isFile ? "$(compgen -f -- \"$current\")" : "")
                : fmt::format("$(compgen -W {} -- \"$current\")",
                              shellQuoted(fmt::format("{}", fmt::join(option.choices, " "))));
        for (const std::string& name : option.names)
            cases += fmt::format("        {}\\ {}) COMPREPLY=({}); return ;;\n", command, name, reply);
    }
    return cases;
}

std::string bashCompletions(const ProgramDescription& program) {
    const std::string common = fmt::format("{}", fmt::join(namesOf(program.commonOptions), " "));
    const std::string commands = fmt::format("{}", fmt::join(commandNames(program), " "));
    std::string values = bashValues("*", program.commonOptions);
    std::string words = fmt::format("        '') words='{} {}' ;;\n", commands, common);
    for (const CommandDescription& command : program.commands) {
        values += bashValues(command.name, command.options);
        words += fmt::format("        {}) words='{} {}' ;;\n", command.name,
                             fmt::join(namesOf(command.options), " "), common);
    }
    return fmt::format(R"(_corvane_cli() {{
    local current="${{COMP_WORDS[COMP_CWORD]}}" previous="${{COMP_WORDS[COMP_CWORD-1]}}"
    local command='' word words=''
    for word in "${{COMP_WORDS[@]:1:COMP_CWORD-1}}"; do
        case " {} " in *" $word "*) command="$word"; break ;; esac
    done
    case "$command $previous" in
{}    esac
    case "$command" in
{}    esac
    if [[ -z "$command" || "$current" == -* ]]; then
        COMPREPLY=($(compgen -W "$words" -- "$current"))
    else
        COMPREPLY=($(compgen -f -- "$current"))
    fi
}}
complete -o filenames -F _corvane_cli {}
)",
                       commands, values, words, program.name);
}

// zsh reads brackets and colons of a description itself.
std::string zshText(std::string_view text) {
    std::string result;
    for (const char byte : text) {
        if (byte == '[' || byte == ']' || byte == ':' || byte == '\\') result += '\\';
        result += byte;
    }
    return result;
}

std::string zshOptions(const std::vector<OptionDescription>& options) {
    std::string lines;
    for (const OptionDescription& option : options) {
        std::string value;
        if (!option.choices.empty())
            value = fmt::format(":value:({})", fmt::join(option.choices, " "));
        else if (!option.value.empty())
            value = option.isFile ? ":file:_files" : ":value:";
        for (const std::string& name : option.names)
            lines += fmt::format(" \\\n            {}",
                                 shellQuoted(fmt::format("{}{}[{}]{}", option.isRepeatable ? "*" : "", name,
                                                         zshText(option.summary), value)));
    }
    return lines;
}

std::string zshCompletions(const ProgramDescription& program) {
    std::string commands;
    std::string cases;
    for (const CommandDescription& command : program.commands) {
        commands += fmt::format("        {}\n", shellQuoted(command.name + ":" + zshText(command.summary)));
        cases += fmt::format("        {}) _arguments{}{} '*:file:_files' ;;\n", command.name,
                             zshOptions(command.options), zshOptions(program.commonOptions));
    }
    return fmt::format(R"(#compdef {}
_corvane_cli() {{
    local context state line
    local -a commands=(
{}    )
    _arguments -C{} '1:command:->command' '*::argument:->argument'
    case "$state" in
    command) _describe command commands ;;
    argument)
        case "$line[1]" in
{}        esac ;;
    esac
}}
_corvane_cli "$@"
)",
                       program.name, commands, zshOptions(program.commonOptions), cases);
}

std::string fishOptions(const std::string& start, const std::vector<OptionDescription>& options) {
    std::string lines;
    for (const OptionDescription& option : options) {
        std::string line = start;
        for (const std::string& name : option.names)
            line += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
        if (!option.choices.empty())
            line += " -x -a " + shellQuoted(fmt::format("{}", fmt::join(option.choices, " ")));
        else if (!option.value.empty())
            line += option.isFile ? " -r -F" : " -x";
        lines += line + " -d " + shellQuoted(option.summary) + "\n";
    }
    return lines;
}

std::string fishCompletions(const ProgramDescription& program) {
    const std::string start = "complete -c " + program.name;
    std::string lines = fishOptions(start, program.commonOptions);
    for (const CommandDescription& command : program.commands) {
        lines += fmt::format("{} -n __fish_use_subcommand -f -a {} -d {}\n", start, command.name,
                             shellQuoted(command.summary));
        lines += fishOptions(start + " -n " + shellQuoted("__fish_seen_subcommand_from " + command.name),
                             command.options);
    }
    return lines;
}

} // namespace

std::string completions(const ProgramDescription& program, std::string_view shell) {
    if (shell == "bash") return bashCompletions(program);
    if (shell == "zsh") return zshCompletions(program);
    return shell == "fish" ? fishCompletions(program) : "";
}

} // namespace corvane::cli
