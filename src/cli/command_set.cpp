#include "cli/command_set.h"

#include <charconv>
#include <system_error>
#include <utility>
#include <vector>

#include <fmt/ranges.h>

#include "platform/files/directory.h"
#include "records/logs/console_log.h"

namespace corvane::cli {

CommandSet::CommandSet(CLI::App& parser)
  : parser_(parser) {
    parser_.set_help_flag("-h,--help", "显示帮助");
    parser_.set_version_flag("--version", "Corvane " CORVANE_VERSION, "显示版本");
    parser_.require_subcommand(1);
    parser_.fallthrough();
    parser_.add_option("--home", common_.home, "本次运行使用的用户主目录")->check(existingFolder());
    parser_.add_flag("--json", common_.json, "在标准输出上给出一个 JSON 文档");
    parser_.add_flag_callback("--log", &showConsoleLines, "在标准错误上给出开发用的日志行");
}

CLI::App& CommandSet::add(const std::string& name, const std::string& summary, const Examples& examples) {
    CLI::App& command = *parser_.add_subcommand(name, summary);
    std::string lines;
    for (const Example& example : examples)
        lines += fmt::format("  corvane-cli {}\n      {}\n", example.line, example.does);
    command.footer(lines);
    return command;
}

void CommandSet::setRun(CLI::App& command, Run run) {
    setRunAlone(command, [run = std::move(run)](const CommonOptions& common) {
        Session session(common.home);
        return run(session, common.json);
    });
}

void CommandSet::setRunAlone(CLI::App& command, RunAlone run) {
    command.callback([this, run = std::move(run)] { chosen_ = [this, run] { return run(common_); }; });
}

CLI::Validator existingFolder() {
    return {[](std::string& path) -> std::string {
                return platform::isDirectory(path) ? "" : fmt::format("没有这个文件夹：{}", path);
            },
            "DIR"};
}

CLI::Validator notNegative() {
    return {[](std::string& text) -> std::string {
                std::int64_t number = -1;
                const char* const last = text.data() + text.size();
                const auto [end, error] = std::from_chars(text.data(), last, number);
                const bool isNumber = error == std::errc() && end == last && number >= 0;
                return isNumber ? "" : fmt::format("应当是不小于 0 的整数：{}", text);
            },
            ""};
}

CLI::Validator detail::oneOf(std::map<std::string, std::string> values) {
    std::vector<std::string> words;
    for (const auto& [word, value] : values) words.push_back(word);
    const std::string shown = fmt::format("{}", fmt::join(words, "|"));
    return {[values = std::move(values), shown](std::string& text) -> std::string {
                const auto found = values.find(text);
                if (found == values.end()) return fmt::format("只能是 {} 之一：{}", shown, text);
                text = found->second;
                return "";
            },
            "{" + shown + "}"};
}

} // namespace corvane::cli
