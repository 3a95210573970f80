#include "cli/usage/usage_errors.h"

#include <regex>
#include <string_view>
#include <vector>

#include <fmt/format.h>

namespace corvane::cli {

namespace {

struct Phrase {
    const char* english; // an expression that the parser's whole text matches
    const char* ours;    // with the expression's groups
};

// In this order: a text may match several.
constexpr Phrase phrases[] = {
    {"The following arguments? (?:was|were) not expected: (.*)", "多余或不认识的参数：$1"},
    {"A subcommand is required", "需要一个命令"},
    {"(.+) is required", "缺少 $1"},
    {"Could not convert: (.+?) = (.*)", "$1：无法理解的值 $2"},
    {"The value (.*) is not an allowed value for (.+)", "$2：不能是 $1"},
    {"(.+?): [0-9]+ required .+ missing", "$1：缺少它的值"},
    {"(.+?): At least [0-9]+ required but received .*", "$1：缺少它的值"},
    {"(.+?): At Most [0-9]+ required but received .*", "$1：给了不止一个值"},
    {"Expected (?:exactly|at least) ([0-9]+) arguments to (.+), got ([0-9]+)",
     "$2：需要 $1 个值，给了 $3 个"},
    {"(.+) was given a disallowed flag override", "$1 不能带值"},
    {"(.+?): too many inputs for a flag", "$1 不能带值"},
    {"(.+?): Should be true/false or a number", "$1 不能带这样的值"},
    {"(.+) requires (.+)", "$1 需要同时给出 $2"},
    {"(.+) excludes (.+)", "$1 不能与 $2 同时使用"},
    {"([^ ]+): (.*)", "$1：$2"}, // a check of ours, which speaks for itself
};

std::string inOurWords(const std::string& english) {
    for (const Phrase& phrase : phrases) {
        std::smatch match;
        if (std::regex_match(english, match, std::regex(phrase.english))) return match.format(phrase.ours);
    }
    return english;
}

} // namespace

std::string usageError(const CLI::ParseError& error, const CLI::App& parser) {
    const std::vector<const CLI::App*> chosen = parser.get_subcommands({});
    for (const CLI::App* command : chosen) {
        if (command->parsed())
            return fmt::format("用法有误：{}。“{} {} --help” 显示用法。", inOurWords(error.what()),
                               parser.get_name(), command->get_name());
    }
    const std::vector<std::string> unknown = parser.remaining();
    const std::string what =
        unknown.empty() ? inOurWords(error.what()) : fmt::format("没有名为 {} 的命令", unknown.front());
    return fmt::format("用法有误：{}。“{} --help” 列出所有命令。", what, parser.get_name());
}

} // namespace corvane::cli
