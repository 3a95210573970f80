// The progress of a long run on standard error: a line that is written over where that is a terminal,
// otherwise a plain line at first and one each ten seconds.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace corvane::cli {

class ProgressLine {
  public:
    ProgressLine();

    // Leaves the last state standing.
    ~ProgressLine();

    // `fraction` below 0: not known.
    void show(std::string_view text, double fraction = -1);

  private:
    bool isDue();

    bool isTerminal_;
    bool isOpen_ = false;
    std::string last_;
    std::optional<std::chrono::steady_clock::time_point> lastShown_;
};

} // namespace corvane::cli
