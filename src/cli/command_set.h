// How a command is defined: its name, help and options, and what runs. Each file of `commands/` adds its own;
// help, completions and the manual page are made from what they say.
#pragma once

#include <array>
#include <functional>
#include <map>
#include <string>
#include <string_view>

#include <CLI/App.hpp>
#include <fmt/format.h>

#include "cli/session.h"

namespace corvane::cli {

// One line of a command's help: what is typed behind the program's name, and what that does.
struct Example {
    std::string_view line;
    std::string_view does;
};

struct CommonOptions {
    std::string home; // empty for the user's own
    bool json = false;
};

class CommandSet {
  public:
    using Examples = std::array<Example, 2>;
    using Run = std::function<int(Session& session, bool json)>;
    using RunAlone = std::function<int(const CommonOptions& common)>;

    // Adds the options that all commands have. The parser must outlive the set.
    explicit CommandSet(CLI::App& parser);

    // A command without options yet. What they are written into belongs to the function that is to be run.
    CLI::App& add(const std::string& name, const std::string& summary, const Examples& examples);

    // What the command does, in a session that is made for it; gives the exit status.
    void setRun(CLI::App& command, Run run);

    // The same for a command that needs no model.
    void setRunAlone(CLI::App& command, RunAlone run);

    // What the arguments have chosen; empty before they are parsed.
    [[nodiscard]] const std::function<int()>& chosen() const { return chosen_; }

    [[nodiscard]] const CommonOptions& common() const { return common_; }

  private:
    CLI::App& parser_;
    CommonOptions common_;
    std::function<int()> chosen_;
};

// Checks of values. Their errors are what the user reads behind the option's name; what stands in braces is
// shown in the help and offered by completions.
CLI::Validator existingFolder();
CLI::Validator notNegative();

namespace detail {
CLI::Validator oneOf(std::map<std::string, std::string> values);
}

// A word that stands for a value of an enumeration; for CLI::Option::transform().
template <class Enum>
CLI::Validator oneOf(const std::map<std::string, Enum>& values) {
    std::map<std::string, std::string> numbers;
    for (const auto& [word, value] : values) numbers[word] = fmt::format("{}", static_cast<int>(value));
    return detail::oneOf(std::move(numbers));
}

} // namespace corvane::cli
