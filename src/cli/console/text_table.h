// Rows of columns for people. On a terminal a row is one line of it: the widest columns are cut, with "…" at
// the cut. Elsewhere nothing is cut.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace corvane::cli {

// The first row is a heading. Columns of numbers are aligned to the right and never cut; wide characters
// count two. Cells are shown as printText() shows a line.
class TextTable {
  public:
    enum class Align { left, right };

    explicit TextTable(std::vector<Align> columns)
      : columns_(std::move(columns)) {}

    void row(std::vector<std::string> cells);

    // Throws as all printing does.
    void print() const;

    // The table with lines of at most so many columns, as far as cutting can reach that; 0 for no limit.
    [[nodiscard]] std::string lines(std::size_t terminalWidth) const;

  private:
    [[nodiscard]] std::vector<std::size_t> widths(std::size_t terminalWidth) const;

    std::vector<Align> columns_;
    std::vector<std::vector<std::string>> rows_;
};

} // namespace corvane::cli
