#include "cli/console/text_table.h"

#include <algorithm>
#include <numeric>

#include <sys/ioctl.h>
#include <unistd.h>

#include "cli/console/output.h"
#include "text/graphemes.h"
#include "text/hidden_characters.h"

namespace corvane::cli {

namespace {

constexpr std::size_t gap = 2;        // between columns
constexpr std::size_t narrowest = 8;  // to which a column is cut
constexpr std::string_view cut = "…"; // takes one column

// 0 when standard output is no terminal.
std::size_t terminalWidth() {
    struct winsize size{};
    const bool isTerminal = ::isatty(STDOUT_FILENO) == 1 && ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0;
    return isTerminal ? size.ws_col : 0;
}

std::string fitted(const std::string& cell, std::size_t width) {
    if (text::displayWidth(cell) <= width) return cell;
    return std::string(text::prefixWithinWidth(cell, width - 1)).append(cut);
}

} // namespace

void TextTable::row(std::vector<std::string> cells) {
    for (std::string& cell : cells) cell = text::withVisibleSigns(cell);
    rows_.push_back(std::move(cells));
}

void TextTable::print() const {
    printRaw(lines(terminalWidth()));
}

std::vector<std::size_t> TextTable::widths(std::size_t terminalWidth) const {
    std::vector<std::size_t> widths(columns_.size(), 0);
    for (const auto& cells : rows_) {
        for (std::size_t column = 0; column < cells.size(); ++column)
            widths[column] = std::max(widths[column], text::displayWidth(cells[column]));
    }
    if (terminalWidth == 0) return widths;
    std::size_t total = std::accumulate(widths.begin(), widths.end(), gap * (widths.size() - 1));
    while (total > terminalWidth) {
        std::size_t* widest = nullptr;
        for (std::size_t column = 0; column < widths.size(); ++column) {
            const bool canBeCut = columns_[column] == Align::left && widths[column] > narrowest;
            if (canBeCut && (widest == nullptr || widths[column] >= *widest)) widest = &widths[column];
        }
        if (widest == nullptr) break;
        --*widest;
        --total;
    }
    return widths;
}

std::string TextTable::lines(std::size_t terminalWidth) const {
    const std::vector<std::size_t> limits = widths(terminalWidth);
    std::string whole;
    for (const auto& cells : rows_) {
        for (std::size_t column = 0; column < cells.size(); ++column) {
            const std::string cell = fitted(cells[column], limits[column]);
            const std::string padding(limits[column] - text::displayWidth(cell), ' ');
            const bool isLast = column + 1 == cells.size();
            if (columns_[column] == Align::right)
                whole += padding + cell;
            else
                whole += cell + (isLast ? "" : padding);
            whole += isLast ? "\n" : std::string(gap, ' ');
        }
    }
    return whole;
}

} // namespace corvane::cli
